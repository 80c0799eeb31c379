#include "RecentThumbnailLoader.h"

#include "FileWork.h"
#include "Logging.h"
#include "PDFSource.h"
#include "PageRenderer.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <cmath>
#include <exception>
#include <new>

/// What one call of `load` has under way. Other threads read `cancelled` only.
struct RecentThumbnailLoader::Job {
    QString path;
    std::atomic<bool> cancelled = false;
    std::function<void(const QImage&)> completion;
    QMetaObject::Connection receiverConnection;
    bool isCounted = false; ///< among those that run
};

RecentThumbnailLoader::RecentThumbnailLoader(QObject* parent) : QObject(parent) {
    m_pool.setMaxThreadCount(2);
}

RecentThumbnailLoader::~RecentThumbnailLoader() {
    m_pool.clear();
    for (const auto& job : m_jobs) {
        job->cancelled = true;
        disconnect(job->receiverConnection);
    }
    m_pool.waitForDone();
}

/// None for a file that is no ordinary one, can't be read or is too large. Opening another kind of file could block.
static std::optional<QByteArray> fileContent(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > RecentThumbnailLoader::maximumFileSize)
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    try {
        return file.read(RecentThumbnailLoader::maximumFileSize);
    } catch (const std::bad_alloc&) { // the cell shows the icon of its type
        return std::nullopt;
    }
}

void RecentThumbnailLoader::load(const QUrl& url, QObject* receiver,
                                 std::function<void(const QImage& image)> completion) {
    const auto job = std::make_shared<Job>();
    job->path = url.toLocalFile();
    job->completion = std::move(completion);
    job->receiverConnection = connect(receiver, &QObject::destroyed, this, [weakJob = std::weak_ptr(job)] {
        if (const auto held = weakJob.lock()) {
            held->cancelled = true;
            held->completion = {};
        }
    });
    m_jobs.insert(job);

    m_waiting.push_back(job);
    startWaiting();
}

/// Few files are in memory at once. One that its disk doesn't give in time no longer counts.
void RecentThumbnailLoader::startWaiting() {
    while (m_runningCount < maximumRunningCount && !m_waiting.empty()) {
        const std::shared_ptr<Job> job = m_waiting.front();
        m_waiting.pop_front();
        ++m_runningCount;
        job->isCounted = true;
        QTimer::singleShot(readingTimeLimit, this, [this, weakJob = std::weak_ptr(job)] {
            if (const auto held = weakJob.lock())
                uncount(*held);
        });
        FileWork::run(
            this, [path = job->path] { return fileContent(path); },
            [this, job](const std::optional<QByteArray>& bytes) {
                if (bytes && !job->cancelled)
                    draw(job, *bytes);
                else
                    finish(job, {});
            });
    }
}

void RecentThumbnailLoader::uncount(Job& job) {
    if (!std::exchange(job.isCounted, false))
        return;
    --m_runningCount;
    startWaiting();
}

void RecentThumbnailLoader::draw(const std::shared_ptr<Job>& job, const QByteArray& bytes) {
    m_pool.start([this, job, bytes] {
        // The clock starts when the work does, and the timer of the main thread is what stops it.
        QMetaObject::invokeMethod(
            this,
            [this, weakJob = std::weak_ptr(job)] {
                QTimer::singleShot(drawingTimeLimit, this, [weakJob] {
                    if (const auto held = weakJob.lock())
                        held->cancelled = true;
                });
            },
            Qt::QueuedConnection);
        const QImage image = thumbnail(bytes, job->cancelled);
        QMetaObject::invokeMethod(
            this, [this, job, image] { finish(job, image); }, Qt::QueuedConnection);
    });
}

void RecentThumbnailLoader::finish(const std::shared_ptr<Job>& job, const QImage& image) {
    disconnect(job->receiverConnection);
    m_jobs.erase(job);
    uncount(*job);
    if (const auto completion = std::exchange(job->completion, {}))
        completion(image);
}

static QImage firstPage(const QByteArray& bytes, const std::atomic<bool>& cancelled) {
    const auto source = PDFSource::open(bytes);
    if (source->needsPassword() || source->pageCount() < 1 || cancelled)
        return {};
    const PDFPageGeometry geometry = source->geometry(0);
    const QSizeF size = geometry.displaySize(PDFDisplayBox::mediaBox);
    const double scale = RecentThumbnailLoader::thumbnailHeight / size.height();
    // A page that is hundreds of times as wide as high is no picture that anyone could recognise.
    constexpr double maximumWidth = 4096;
    const double width = std::max(std::round(size.width() * scale), 1.0);
    if (!(width <= maximumWidth))
        return {};

    PageRenderRequest request;
    request.content = {source, 0};
    request.pageToDevice =
        geometry.displayTransform(PDFDisplayBox::mediaBox) * QTransform::fromScale(width / size.width(), scale);
    request.deviceRect = QRect(0, 0, static_cast<int>(width), RecentThumbnailLoader::thumbnailHeight);
    request.bareAnnotations = true;
    return PageRenderer::render(request, &cancelled);
}

QImage RecentThumbnailLoader::thumbnail(const QByteArray& bytes, const std::atomic<bool>& cancelled) {
    try {
        return cancelled ? QImage() : firstPage(bytes, cancelled);
    } catch (const std::exception& error) { // the cell shows the icon of its type
        qCInfo(Logging::document) << "no picture of a recent file:" << Logging::causes(error);
        return {};
    }
}
