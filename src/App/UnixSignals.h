#pragma once

#include <QObject>

class QSocketNotifier;

/// Turns the end of the terminal or of the login (SIGHUP), an interrupt and a request to end (SIGINT, SIGTERM) into a
/// Qt signal. At most one object at a time; while it lives, a second interrupt or request ends the process at once, so
/// a program that no longer answers can still be stopped. Main thread only.
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
