#pragma once

#include <QObject>
#include <QPointer>

#include <stop_token>

class QProgressDialog;
class QWidget;

/// How far a recognition of text is, in a dialog over the window that leaves the window alive, with Cancel. When it
/// goes, as with its window, the recognition is asked to stop. Main thread.
class RecognitionProgress : public QObject {
public:
    explicit RecognitionProgress(QWidget* window);
    ~RecognitionProgress() override;

    [[nodiscard]] std::stop_token stop() const { return m_stop.get_token(); }
    [[nodiscard]] bool isCancelled() const { return m_stop.stop_requested(); }
    /// True once `tell` has been called.
    [[nodiscard]] bool hasBegun() const { return m_hasBegun; }
    /// For who comes back from a recognition: ends the progress, and is false when it was cancelled or is gone with its
    /// window.
    [[nodiscard]] static bool end(const QPointer<RecognitionProgress>& progress);
    /// The page from 1 to `count` is being recognized.
    void tell(int page, int count);

private:
    std::stop_source m_stop;
    QPointer<QProgressDialog> m_dialog;
    bool m_hasBegun = false;
};
