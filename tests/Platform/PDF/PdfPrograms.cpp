#include "PdfPrograms.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryFile>

PdfPrograms::Result PdfPrograms::run(const QString& program, QStringList arguments, const QByteArray& file) {
    QTemporaryFile copy(QDir::temp().filePath(QStringLiteral("XXXXXX.pdf"))); // some go by the ending
    if (!copy.open() || copy.write(file) != file.size() || !copy.flush())
        return {};
    arguments.replaceInStrings(QStringLiteral("FILE"), copy.fileName());
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

std::string PdfPrograms::complaints(const QByteArray& file, const QString& password) {
    const Result result =
        run(QStringLiteral("qpdf"),
            {QStringLiteral("--check"), QStringLiteral("--password=") + password, QStringLiteral("FILE")}, file);
    if (result.exitCode == 0)
        return {};
    return result.errors.isEmpty() ? "qpdf ended with " + std::to_string(result.exitCode) : result.errors.toStdString();
}

QByteArray PdfPrograms::unpacked(const QByteArray& file, const QString& password) {
    return run(QStringLiteral("qpdf"),
               {QStringLiteral("--qdf"), QStringLiteral("--object-streams=disable"), QStringLiteral("--decrypt"),
                QStringLiteral("--password=") + password, QStringLiteral("FILE"), QStringLiteral("-")},
               file)
        .output;
}

QString PdfPrograms::text(const QByteArray& file, int page) {
    QStringList arguments{QStringLiteral("-layout"), QStringLiteral("FILE"), QStringLiteral("-")};
    if (page > 0)
        arguments =
            QStringList{QStringLiteral("-f"), QString::number(page), QStringLiteral("-l"), QString::number(page)} +
            arguments;
    return QString::fromUtf8(run(QStringLiteral("pdftotext"), arguments, file).output);
}
