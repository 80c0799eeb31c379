#pragma once

#include <QObject>

class QSocketNotifier;

/// Turns an interrupt from the terminal and a request to end (SIGINT, SIGTERM) into a Qt signal. At most one object at
/// a time; while it lives, a second such request ends the process at once, so a program that no longer answers can
/// still be stopped. Main thread only.
class UnixSignals : public QObject {
    Q_OBJECT

public:
    explicit UnixSignals(QObject* parent = nullptr);
    ~UnixSignals() override;

Q_SIGNALS:
    void quitRequested();

private:
    QSocketNotifier* m_notifier = nullptr;
};
