#pragma once

#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <QUrl>

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <unordered_set>

/// Makes pictures of the first page of PDF files away from the main thread, so that neither a slow disk nor a hostile
/// file holds up the windows. Itself used on the main thread only.
class RecentThumbnailLoader : public QObject {
    Q_OBJECT

public:
    /// Pixels; the width follows the page's ratio.
    static constexpr int thumbnailHeight = 280;
    /// A larger file gets no thumbnail: it would have to be read as a whole.
    static constexpr qint64 maximumFileSize = qint64(256) * 1024 * 1024;
    /// A page that takes longer to draw gets no thumbnail.
    static constexpr std::chrono::seconds drawingTimeLimit{10};

    /// After that the next file is read, too.
    static constexpr std::chrono::seconds readingTimeLimit{5};
    static constexpr int maximumRunningCount = 2;

    explicit RecentThumbnailLoader(QObject* parent = nullptr);
    /// Cancels what is running. Waits for what is drawn, which ends soon, and not for the disk.
    ~RecentThumbnailLoader() override;

    /// Calls `completion` later, on the main thread, with the first page's picture, or a null image when there can be
    /// none: no PDF file, one that is locked or unreadable, or one beyond the limits. When `receiver` is gone first,
    /// the work is given up and `completion` is not called.
    void load(const QUrl& url, QObject* receiver, std::function<void(const QImage& image)> completion);

    /// The work itself, for any thread. `cancelled` makes it return a null image soon.
    [[nodiscard]] static QImage thumbnail(const QByteArray& bytes, const std::atomic<bool>& cancelled);

private:
    struct Job;
    void startWaiting();
    void uncount(Job& job);
    void draw(const std::shared_ptr<Job>& job, const QByteArray& bytes);
    void finish(const std::shared_ptr<Job>& job, const QImage& image);

    QThreadPool m_pool;
    std::deque<std::shared_ptr<Job>> m_waiting;
    int m_runningCount = 0;
    std::unordered_set<std::shared_ptr<Job>> m_jobs;
};
