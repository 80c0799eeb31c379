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

PdfPrograms::Result PdfPrograms::run(const QString& line, const QByteArray& file) {
    QStringList arguments = line.split(QLatin1Char(' '));
    const QString program = arguments.takeFirst();
    return run(program, arguments, file);
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

QString PdfPrograms::text(const QByteArray& file, int page, const QString& password) {
    QString line = QStringLiteral("pdftotext -layout -upw %1 FILE -").arg(password);
    if (page > 0)
        line.insert(line.indexOf(QLatin1Char(' ')), QStringLiteral(" -f %1 -l %1").arg(page));
    return QString::fromUtf8(run(line, file).output);
}
