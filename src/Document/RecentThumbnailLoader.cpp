#include "RecentThumbnailLoader.h"

#include "Logging.h"
#include "PDFSource.h"
#include "PageRenderer.h"

#include <QFile>
#include <QFileInfo>
#include <QTimer>

#include <cmath>
#include <exception>

/// What one call of `load` has under way. The worker reads `path` and `cancelled` only.
struct RecentThumbnailLoader::Job {
    QString path;
    std::atomic<bool> cancelled = false;
    std::function<void(const QImage&)> completion;
    QMetaObject::Connection receiverConnection;
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

    m_pool.start([this, job] {
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
        const QImage image = thumbnail(job->path, job->cancelled);
        QMetaObject::invokeMethod(
            this, [this, job, image] { finish(job, image); }, Qt::QueuedConnection);
    });
}

void RecentThumbnailLoader::finish(const std::shared_ptr<Job>& job, const QImage& image) {
    disconnect(job->receiverConnection);
    m_jobs.erase(job);
    if (const auto completion = std::exchange(job->completion, {}))
        completion(image);
}

/// None for a file that is no ordinary one, can't be read or is too large. Opening another kind of file could block.
static std::optional<QByteArray> fileContent(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > RecentThumbnailLoader::maximumFileSize)
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.read(RecentThumbnailLoader::maximumFileSize);
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

QImage RecentThumbnailLoader::thumbnail(const QString& path, const std::atomic<bool>& cancelled) {
    if (cancelled)
        return {};
    try {
        const std::optional<QByteArray> bytes = fileContent(path);
        return bytes && !cancelled ? firstPage(*bytes, cancelled) : QImage();
    } catch (const std::exception& error) { // the cell shows the icon of its type
        qCInfo(Logging::document) << "no picture of a recent file:" << Logging::causes(error);
        return {};
    }
}
