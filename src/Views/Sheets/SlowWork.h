#pragma once

#include "FileWork.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <memory>
#include <utility>

class QProgressDialog;
class QWidget;

/// Work on another thread that a window waits for without standing still. When it takes long, a dialog over the window
/// shows how far it is, and cancels it. It goes when it is done, and with the window. Main thread, but for `Course`.
class SlowWork : public QObject {
    Q_OBJECT

public:
    /// After which the dialog appears.
    static constexpr std::chrono::milliseconds slowness{500};

    /// What the work and the window know of each other. Any thread.
    class Course {
    public:
        [[nodiscard]] bool isCancelled() const { return m_state == State::cancelled; }
        /// From now on it can't be cancelled; false when it has been.
        bool becomeFinal() { return leave(State::final); }
        /// False when it has become final.
        bool cancel() { return leave(State::cancelled); }
        /// Of `total` equal steps.
        void tell(int done, int total) {
            m_total = total;
            m_done = done;
        }
        [[nodiscard]] int done() const { return m_done; }
        [[nodiscard]] int total() const { return m_total; }

    private:
        enum class State { running, final, cancelled };
        bool leave(State state) {
            State running = State::running;
            return m_state.compare_exchange_strong(running, state);
        }
        std::atomic<State> m_state = State::running;
        std::atomic<int> m_done = 0;
        std::atomic<int> m_total = 0;
    };

    /// Calls `work` with a `Course&` on another thread, and `done` with its value on this one, unless it is cancelled
    /// or `owner`, in whose window the dialog appears, goes first. `sentence` says what is being done. `work` must not
    /// throw; see `FileWork::run`. What is returned goes once it has ended in any way.
    template <typename Work, typename Done>
    static QObject* run(QWidget* owner, const QString& sentence, Work work, Done done) {
        auto* slow = new SlowWork(owner, sentence);
        FileWork::run(
            slow, [work = std::move(work), course = slow->m_course]() mutable { return work(*course); },
            [slow, done = std::move(done)](auto&& value) mutable {
                slow->deleteLater();
                if (slow->m_course->isCancelled())
                    return;
                slow->stopShowing();
                done(std::forward<decltype(value)>(value));
            });
        return slow;
    }
    ~SlowWork() override;

private:
    SlowWork(QWidget* owner, QString sentence);
    void show();
    void stopShowing();
    void cancel();

    const QString m_sentence;
    std::shared_ptr<Course> m_course = std::make_shared<Course>();
    QTimer m_timer; ///< at first until the dialog appears, then for its progress
    QPointer<QProgressDialog> m_dialog;
};
