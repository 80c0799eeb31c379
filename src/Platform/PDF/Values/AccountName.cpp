#include "AccountName.h"

#include <QByteArray>

#include <array>

#include <pwd.h>
#include <unistd.h>

namespace {

QString ofAccount() {
    std::array<char, 16384> buffer{};
    passwd account{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found) != 0 || !found)
        return qEnvironmentVariable("USER");
    return AccountName::from(QString::fromLocal8Bit(found->pw_gecos), QString::fromLocal8Bit(found->pw_name));
}

} // namespace

QString AccountName::from(const QString& details, const QString& login) {
    QString name = details.section(QLatin1Char(','), 0, 0);
    name.replace(QLatin1Char('&'), login.left(1).toUpper() + login.mid(1));
    name = name.simplified();
    return name.isEmpty() ? login : name;
}

QString AccountName::current() {
    static const QString name = ofAccount();
    return name;
}
