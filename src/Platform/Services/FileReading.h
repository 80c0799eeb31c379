#pragma once

#include "FileWork.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

class DocumentPresenter;

/// The reading of one file, on a thread that nobody waits for longer than a moment. When it takes long, the presenter
/// shows it with a way to give it up. Deleting it gives it up too: what is read then reaches nobody. Main thread only.
class FileReading : public QObject {
    Q_OBJECT

public:
    /// After which the presenter shows it.
    static constexpr std::chrono::milliseconds slowness{500};
    /// The thread that asks waits that long for a file, so that one that is at hand is open at once and nothing
    /// flickers. Tests, which don't depend on time, set it otherwise.
    static std::chrono::milliseconds patience;

    /// `presenter` outlives it; `name` is for the user.
    FileReading(DocumentPresenter& presenter, QString name, QObject* parent = nullptr);
    ~FileReading() override;

    /// As `FileWork::run`; once. `done` may delete this.
    template <typename Work, typename Done>
    void start(Work work, Done done, std::chrono::milliseconds wait = patience) {
        m_slow.start();
        FileWork::run(
            m_receiver.get(), std::move(work),
            [this, done = std::move(done)](auto&& value) mutable {
                stopShowing();
                done(std::forward<decltype(value)>(value));
            },
            wait);
    }
    [[nodiscard]] bool isSlow() const { return m_isSlow; }

Q_SIGNALS:
    /// It takes long.
    void becameSlow();
    /// By the user. Nothing comes any more.
    void givenUp();

private:
    void show();
    void stopShowing();

    DocumentPresenter& m_presenter;
    const QString m_name;
    std::unique_ptr<QObject> m_receiver = std::make_unique<QObject>();
    QTimer m_slow;
    bool m_isSlow = false;
    std::shared_ptr<void> m_shown;
};
