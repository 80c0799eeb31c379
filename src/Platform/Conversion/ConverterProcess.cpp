#include "ConverterProcess.h"

#include "ConfinedProgram.h"
#include "ConverterServer.h"
#include "Logging.h"

#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>

#include <utility>

namespace {

QByteArrayList& converterCommand() {
    static QByteArrayList command;
    return command;
}

/// Beside what is told here, the file itself.
QStringList readableByAll() {
    return ConfinedProgram::commonPlaces()
           << QStringLiteral("/etc") << QStringLiteral("/dev/null") << QStringLiteral("/dev/urandom")
           << QLibraryInfo::path(QLibraryInfo::LibrariesPath) << QLibraryInfo::path(QLibraryInfo::PluginsPath);
}

/// The language and where fonts are; nothing that says more of the user.
QByteArrayList environmentOfProgram() {
    return ConfinedProgram::inherited({"PATH", "HOME", "LANG", "LC_ALL", "LC_CTYPE", "LD_LIBRARY_PATH",
                                       "QT_PLUGIN_PATH", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME",
                                       "FONTCONFIG_FILE", "FONTCONFIG_PATH"})
           << "QT_QPA_PLATFORM=offscreen"
           << "QT_SCALE_FACTOR=1";
}

} // namespace

QString ConverterProcess::name(Kind kind) {
    switch (kind) {
    case Kind::text:
        return QStringLiteral("text");
    case Kind::html:
        return QStringLiteral("html");
    case Kind::picture:
        return QStringLiteral("picture");
    case Kind::book:
        return QStringLiteral("book");
    }
    return {};
}

std::optional<ConverterProcess::Kind> ConverterProcess::kindNamed(const QString& text) {
    for (const Kind kind : {Kind::text, Kind::html, Kind::picture, Kind::book})
        if (name(kind) == text)
            return kind;
    return std::nullopt;
}

void ConverterProcess::setCommand(QByteArrayList command) {
    converterCommand() = std::move(command);
}

bool ConverterProcess::convert(Kind kind, const QString& source, const QString& destination,
                               const std::stop_token& stop, std::chrono::milliseconds limit) {
    if (converterCommand().isEmpty())
        return ConverterServer::convert(kind, source, destination);
    const QFileInfo to(destination);
    ConfinedProgram program;
    program.command = converterCommand();
    program.command << name(kind).toLatin1() << QFile::encodeName(QFileInfo(source).absoluteFilePath())
                    << QFile::encodeName(to.absoluteFilePath());
    program.environment = environmentOfProgram();
    program.workingFolder = to.absolutePath();
    program.readable = readableByAll();
    program.readable << QFile::decodeName(converterCommand().constFirst())
                     << (kind == Kind::html ? QFileInfo(source).absolutePath() : source);
    program.writable = {to.absolutePath(), QStringLiteral("/dev/null")};
    program.timeLimit = limit;
    program.mostMemory = ConverterServer::mostMemory;
    const ConfinedProgram::Result result = program.run(stop);
    const bool isDone = result.end == ConfinedProgram::End::exited && result.exitCode == 0 && to.exists();
    if (!isDone) {
        qCWarning(Logging::document) << "a converter ended in the way" << int(result.end) << "with" << result.exitCode;
        QFile::remove(destination);
    }
    return isDone;
}
