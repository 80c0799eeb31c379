#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <utility>

class QObject;

/// A PDF file on its way to a printer of the desktop's print service (CUPS).
struct PrintJob {
    QString printer; ///< the queue's name
    QString title;   ///< what the queue shows
    int copies = 1;
    /// What the print service is told besides: "sides", "media" and the like with their values.
    QList<std::pair<QString, QString>> options;

    /// Hands the file to the service, without blocking. `finished` gets an empty string, or a sentence why it failed;
    /// it isn't called when `owner` goes before, and the job goes on then. Main thread.
    void submit(const QByteArray& pdf, QObject* owner, std::function<void(const QString& failure)> finished) const;
};
