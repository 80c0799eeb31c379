#pragma once

#include <QDialog>
#include <QPointer>

/// Shows a dialog, waits for its end in a nested event loop, and deletes the dialog when it goes out of scope itself.
/// For questions whose asker can't go on without the answer; any other is opened and tells its end by a signal. The
/// dialog may vanish while it waits, with the window that it belongs to. Main thread only.
class DialogRun {
public:
    /// Takes the dialog over, which lives on the heap. Returns when it is answered or gone.
    explicit DialogRun(QDialog* dialog) : m_dialog(dialog), m_isAccepted(dialog->exec() == QDialog::Accepted) {}
    ~DialogRun() { delete m_dialog; }
    Q_DISABLE_COPY_MOVE(DialogRun)

    /// False when the dialog went unanswered: nothing of it may be touched any more.
    [[nodiscard]] bool isDialogAlive() const { return m_dialog; }
    [[nodiscard]] bool isAccepted() const { return isDialogAlive() && m_isAccepted; }

private:
    QPointer<QDialog> m_dialog;
    bool m_isAccepted;
};
