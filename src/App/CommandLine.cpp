#include "CommandLine.h"

#include <QDir>
#include <QFileInfo>

static QUrl fileURL(const QString& argument, const QString& folder) {
    const QString path = QDir::cleanPath(QDir(folder).absoluteFilePath(argument));
    // A file manager may hand over an address instead of a path; a file that really has such a name goes first.
    QUrl url(argument);
    if (url.isValid() && url.scheme().size() > 1 && argument.contains(QLatin1String(":/")) && !QFileInfo::exists(path))
        return url;
    return QUrl::fromLocalFile(path);
}

CommandLine CommandLine::parse(const QStringList& arguments, const QString& folder) {
    CommandLine line;
    if (arguments == QStringList{recognizerOption}) {
        line.kind = Kind::recognizer;
        return line;
    }
    if (!arguments.isEmpty() && arguments.constFirst() == converterOption) {
        line.kind = Kind::converter;
        line.conversion = arguments.mid(1);
        return line;
    }
    bool onlyFiles = false;
    for (const QString& argument : arguments) {
        if (onlyFiles || !argument.startsWith(QLatin1Char('-'))) {
            if (!argument.isEmpty())
                line.files.append(fileURL(argument, folder));
        } else if (argument == QLatin1String("--")) {
            onlyFiles = true;
        } else if (argument == QLatin1String("--version")) {
            line.kind = Kind::version;
            return line;
        } else if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            line.kind = Kind::help;
            return line;
        } else {
            line.kind = Kind::mistake;
            line.mistake = QStringLiteral("There is no option %1.").arg(argument);
            return line;
        }
    }
    return line;
}

QString CommandLine::usage() {
    return QStringLiteral("Usage: quillo [FILE…]\n"
                          "Opens the files, or shows the start window when there are none.\n"
                          "\n"
                          "  --help     Show this text.\n"
                          "  --version  Show the version.\n");
}
