#include "PrintJob.h"

#include <QCoreApplication>
#include <QPointer>
#include <QProcess>

#include <memory>

namespace {

QString failureOf(const QProcess& process, QByteArray complaint) {
    if (process.error() == QProcess::FailedToStart)
        return QStringLiteral("This computer has no print service.");
    // "lp: The printer or class does not exist."
    complaint = complaint.trimmed().left(300);
    const QString text = QString::fromLocal8Bit(complaint.mid(complaint.startsWith("lp: ") ? 4 : 0));
    return text.isEmpty() ? QStringLiteral("The print service didn't take it.")
                          : QStringLiteral("The print service didn't take it: %1").arg(text);
}

} // namespace

void PrintJob::submit(const QByteArray& pdf, QObject* owner,
                      std::function<void(const QString& failure)> finished) const {
    QStringList arguments = {QStringLiteral("-d"), printer, QStringLiteral("-n"), QString::number(copies),
                             QStringLiteral("-t"), title};
    for (const auto& [name, value] : options)
        arguments << QStringLiteral("-o") << (value.isEmpty() ? name : name + QLatin1Char('=') + value);
    auto* process = new QProcess(QCoreApplication::instance());
    process->setStandardOutputFile(QProcess::nullDevice());
    const auto end = [process, receiver = QPointer<QObject>(owner), finished = std::move(finished)] {
        const bool done = process->error() != QProcess::FailedToStart &&
                          process->exitStatus() == QProcess::NormalExit && process->exitCode() == 0;
        const QString failure = done ? QString() : failureOf(*process, process->readAllStandardError());
        process->disconnect();
        process->deleteLater();
        if (receiver)
            finished(failure);
    };
    QObject::connect(process, &QProcess::finished, process, end);
    QObject::connect(process, &QProcess::errorOccurred, process, [end](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            end();
    });
    process->start(QStringLiteral("lp"), arguments); // without the name of a file it takes the standard input
    if (process->state() == QProcess::NotRunning)
        return; // it couldn't be started
    process->write(pdf);
    process->closeWriteChannel();
}
