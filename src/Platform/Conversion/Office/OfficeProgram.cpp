#include "OfficeProgram.h"

#include "ConfinedProgram.h"
#include "OfficeProfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <iterator>

#include <unistd.h>

namespace {

constexpr qint64 largestSource = qint64(1) << 30U; // bytes
// It ends after its first start with a new profile, and asks to be started again.
constexpr int startAgain[] = {79, 81};
constexpr int mostStarts = 4;
const QString socketFolder = QStringLiteral("/tmp");

QString libraryOf(OfficeComponent component) {
    switch (component) {
    case OfficeComponent::writer:
        return QStringLiteral("libswlo.so");
    case OfficeComponent::calc:
        return QStringLiteral("libsclo.so");
    case OfficeComponent::impress:
        break;
    }
    return QStringLiteral("libsdlo.so");
}

/// Of the component that reads the format.
QString exportFilter(OfficeComponent component) {
    switch (component) {
    case OfficeComponent::writer:
        return QStringLiteral("pdf:writer_pdf_Export");
    case OfficeComponent::calc: // each sheet on a page of its own, however large
        return QStringLiteral(R"(pdf:calc_pdf_Export:{"SinglePageSheets":{"type":"boolean","value":"true"}})");
    case OfficeComponent::impress:
        break;
    }
    return QStringLiteral("pdf:impress_pdf_Export");
}

/// Of the system; the program's own folder, too.
QStringList readablePlaces(const QString& program) {
    QStringList places = ConfinedProgram::commonPlaces();
    for (const char* place : {"/etc/alternatives", "/etc/libreoffice", "/etc/locale.alias", "/etc/localtime",
                              "/etc/papersize", "/etc/paper.config", "/etc/nsswitch.conf", "/var/lib/libreoffice",
                              "/var/spool/libreoffice", "/proc", "/sys/devices/system/cpu"})
        places << QString::fromLatin1(place);
    places << QFileInfo(QFileInfo(program).path()).path();
    return places;
}

/// What finds programs, fonts and the language; nothing that leads to a desktop, a bus or a proxy.
QByteArrayList environment(const QString& folder) {
    QByteArrayList variables = ConfinedProgram::inherited(
        {"PATH", "HOME", "LANG", "LANGUAGE", "LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LC_NUMERIC", "LC_TIME", "LC_PAPER",
         "LC_MONETARY", "TZ", "XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "FONTCONFIG_FILE",
         "FONTCONFIG_PATH"});
    variables << "SAL_USE_VCLPLUGIN=svp"
              << "DBUS_SESSION_BUS_ADDRESS=disabled:";
    for (const char* name : {"TMPDIR", "XDG_RUNTIME_DIR", "GNUPGHOME"})
        variables << QByteArray(name) + '=' + QFile::encodeName(folder);
    return variables;
}

/// Each profile has a socket by which a second start would find the first. It stands in a folder that can't be chosen.
QString socketOf(const QByteArray& profile) {
    const QString text = QString::fromLatin1(profile);
    const QByteArray sum = QCryptographicHash::hash(
        QByteArray::fromRawData(reinterpret_cast<const char*>(text.utf16()), text.size() * 2), QCryptographicHash::Md5);
    QString name = socketFolder + QStringLiteral("/OSL_PIPE_%1_SingleOfficeIPC_").arg(getuid());
    for (const char byte : sum)
        name += QString::number(quint8(byte), 16); // without leading zeros
    return name;
}

} // namespace

std::optional<OfficeProgram> OfficeProgram::find(OfficeComponent component) {
    const QStringList usual{QStringLiteral("/usr/lib/libreoffice/program"),
                            QStringLiteral("/usr/lib64/libreoffice/program"),
                            QStringLiteral("/opt/libreoffice/program")};
    for (const char* name : {"soffice", "libreoffice"}) {
        QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (found.isEmpty())
            found = QStandardPaths::findExecutable(QString::fromLatin1(name), usual);
        if (found.isEmpty())
            continue;
        // The script there asks half a dozen programs before it starts the one beside it.
        const QString folder = QFileInfo(QFileInfo(found).canonicalFilePath()).path();
        const QString binary = folder + QStringLiteral("/soffice.bin");
        if (!QFileInfo(binary).isExecutable())
            return OfficeProgram(found);
        if (!QFileInfo::exists(folder + u'/' + libraryOf(component)))
            return std::nullopt;
        return OfficeProgram(binary);
    }
    return std::nullopt;
}

OfficeProgram::Outcome OfficeProgram::writePages(const QString& source, const OfficeFormat& format,
                                                 const QString& destination, const std::stop_token& stop) const {
    const QTemporaryDir folder(QDir::tempPath() + QStringLiteral("/quillo-office-XXXXXX"));
    // A copy under a name of ours, so that nothing is found beside it, locked or left there.
    const QString copy = folder.filePath(QStringLiteral("document.") + format.suffix);
    const QString profile = folder.filePath(QStringLiteral("profile"));
    const QString output = folder.filePath(QStringLiteral("pages"));
    if (!folder.isValid() || QFileInfo(source).size() > largestSource || !QFile::copy(source, copy) ||
        !QDir().mkpath(output) || !OfficeProfile::write(profile))
        return Outcome::failed;
    const QByteArray profileAddress = QUrl::fromLocalFile(profile).toEncoded();
    ConfinedProgram program;
    program.command = {QFile::encodeName(m_path),
                       "-env:UserInstallation=" + profileAddress,
                       "--headless",
                       "--norestore",
                       "--nologo",
                       "--nodefault",
                       "--nolockcheck",
                       "--infilter=" + format.importFilter.toUtf8(),
                       "--convert-to",
                       exportFilter(format.component).toUtf8(),
                       "--outdir",
                       QFile::encodeName(output),
                       QFile::encodeName(copy)};
    program.environment = environment(folder.path());
    program.workingFolder = folder.path();
    program.readable = readablePlaces(m_path);
    program.writable = QStringList{folder.path(), QStringLiteral("/dev/null"), QStringLiteral("/dev/zero"),
                                   QStringLiteral("/dev/random"), QStringLiteral("/dev/urandom")};
    program.forSockets = QStringList(socketFolder);
    const auto latest = std::chrono::steady_clock::now() + program.timeLimit;
    for (int i = 0; i < mostStarts; ++i) {
        const ConfinedProgram::Result result = program.run(stop);
        QFile::remove(socketOf(profileAddress)); // it may not do that itself
        if (result.end == ConfinedProgram::End::stopped)
            return Outcome::stopped;
        program.timeLimit =
            std::chrono::duration_cast<std::chrono::milliseconds>(latest - std::chrono::steady_clock::now());
        if (std::find(std::begin(startAgain), std::end(startAgain), result.exitCode) == std::end(startAgain))
            break;
    }
    // Its exit code tells nothing: it may crash after the work, and it succeeds without any.
    const QString written = output + QStringLiteral("/document.pdf");
    QFile::remove(destination);
    return QFile::rename(written, destination) ? Outcome::written : Outcome::failed;
}
