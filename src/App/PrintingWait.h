#pragma once

#include <QDialog>
#include <QObject>
#include <QPointer>

#include <functional>

class DocumentDialogs;

/// Holds back the end of the program until what is being printed is on its way, and says so meanwhile. Main thread
/// only.
class PrintingWait : public QObject {
    Q_OBJECT

public:
    /// `dialogs` must outlive the object.
    explicit PrintingWait(DocumentDialogs& dialogs, QObject* parent = nullptr);
    ~PrintingWait() override;

    /// `completion` gets whether the program may end: false when the user would rather stay. It is called before the
    /// function returns when nothing is being printed.
    void whenDone(std::function<void(bool mayEnd)> completion);

private:
    void end(bool mayEnd);

    DocumentDialogs& m_dialogs;
    QPointer<QDialog> m_message;
    std::function<void(bool mayEnd)> m_completion; ///< empty when nothing waits
};
