#pragma once

#include <QCoroTask>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <stop_token>

/// Lets another thread read what the main thread would be too slow for, before anybody asks for it. The end of this
/// object, or of the program, stops what is being read. Main thread only.
class ReadingAhead : public QObject {
    Q_OBJECT

public:
    ReadingAhead();
    ~ReadingAhead() override;

    /// For the work to look at between its steps.
    [[nodiscard]] std::stop_token stopToken() const { return m_stop.get_token(); }

    /// What `work` returns, which runs on another thread and so uses only what it owns. None when it was stopped or
    /// failed: whoever asks then reads for himself, and sees. Never throws; may outlive this object.
    [[nodiscard]] QCoro::Task<std::optional<QString>> read(std::function<QString()> work) const;

private:
    std::stop_source m_stop;
};
