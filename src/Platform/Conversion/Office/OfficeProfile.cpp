#include "OfficeProfile.h"

#include <QDir>
#include <QFile>

namespace {

struct Setting {
    const char* group;
    const char* name;
    const char* value;
};

// No macro runs, no link is followed, nothing is fetched, and no Java is looked for.
constexpr Setting settings[] = {
    {"Common/Security/Scripting", "MacroSecurityLevel", "3"},
    {"Common/Security/Scripting", "DisableMacrosExecution", "true"},
    {"Common/Security/Scripting", "BlockUntrustedRefererLinks", "true"},
    {"Writer/Content/Update", "Link", "0"},
    {"Calc/Content/Update", "Link", "1"},
    {"Java/VirtualMachine", "Enable", "false"},
};

// Behind the confinement: a proxy at which nobody answers.
constexpr Setting proxies[] = {
    {"Settings", "ooInetProxyType", "2"},      {"Settings", "ooInetHTTPProxyName", "127.0.0.1"},
    {"Settings", "ooInetHTTPProxyPort", "9"},  {"Settings", "ooInetHTTPSProxyName", "127.0.0.1"},
    {"Settings", "ooInetHTTPSProxyPort", "9"}, {"Settings", "ooInetFTPProxyName", "127.0.0.1"},
    {"Settings", "ooInetFTPProxyPort", "9"},   {"Settings", "ooInetNoProxy", ""},
};

QByteArray item(const char* root, const Setting& setting) {
    return QByteArray("<item oor:path=\"/org.openoffice.") + root + setting.group + "\"><prop oor:name=\"" +
           setting.name + "\" oor:op=\"fuse\"><value>" + setting.value + "</value></prop></item>\n";
}

} // namespace

bool OfficeProfile::write(const QString& folder) {
    const QString user = folder + QStringLiteral("/user");
    QFile file(user + QStringLiteral("/registrymodifications.xcu"));
    if (!QDir().mkpath(user) || !file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<oor:items xmlns:oor=\"http://openoffice.org/2001/registry\" "
                      "xmlns:xs=\"http://www.w3.org/2001/XMLSchema\" "
                      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n";
    for (const Setting& setting : settings)
        text += item("Office.", setting);
    for (const Setting& setting : proxies)
        text += item("Inet/", setting);
    text += "</oor:items>\n";
    return file.write(text) == text.size() && file.flush();
}
