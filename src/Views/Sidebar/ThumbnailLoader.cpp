#include "ThumbnailLoader.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PagePicture.h"
#include "ThumbnailCache.h"

#include <QThread>
#include <QTimer>

#include <algorithm>
#include <unordered_set>
#include <utility>

/// A page that is being drawn. The threads read `cancelled` only.
struct ThumbnailLoader::Job {
    std::weak_ptr<PDFPage> page;
    quint64 revision = 0;
    QSize pixels;
    bool hasLiveAnnotations = false;
    bool tookTooLong = false;
    std::atomic<bool> cancelled = false;
};

ThumbnailLoader::ThumbnailLoader(std::shared_ptr<PDFDocument> document, QObject* parent)
    : QObject(parent), m_document(std::move(document)) {
    // The viewer draws on other threads at the same time.
    m_pool.setMaxThreadCount(std::clamp(QThread::idealThreadCount() / 2, 1, 3));
}

ThumbnailLoader::~ThumbnailLoader() {
    for (const auto& job : m_running)
        job->cancelled = true;
    m_pool.clear();
    m_pool.waitForDone();
}

/// A new page may stand at the address of one that has gone.
ThumbnailLoader::Entry* ThumbnailLoader::entryOf(const PDFPage& page) {
    const auto found = m_entries.find(&page);
    if (found == m_entries.end())
        return nullptr;
    if (found->page.lock().get() == &page)
        return &*found;
    m_entries.erase(found);
    return nullptr;
}

QImage ThumbnailLoader::picture(int index) {
    const std::shared_ptr<PDFPage> page = m_document->page(index);
    const Entry* entry = page ? entryOf(*page) : nullptr;
    if (!entry)
        return {};
    const QString key = ThumbnailCache::key(*m_document, index);
    // The owner tells whose picture it is when pages have moved and the cache wasn't emptied.
    if (m_owners.value(key) == page.get())
        if (QImage image = ThumbnailCache::image(key); !image.isNull())
            return image;
    if (!entry->kept.isNull()) {
        ThumbnailCache::insert(key, entry->kept);
        m_owners.insert(key, page.get());
    }
    return entry->kept;
}

bool ThumbnailLoader::isUpToDate(const PDFPage& page, int index) {
    const Entry* entry = entryOf(page);
    if (!entry || entry->revision != page.revision())
        return false;
    return entry->failed || (entry->pixels.width() >= m_pixels.width() && !picture(index).isNull());
}

void ThumbnailLoader::want(const std::vector<int>& indices, QSize pixels) {
    m_pixels = pixels.expandedTo(usualSize);
    m_waiting.clear();
    std::unordered_set<const PDFPage*> wanted;
    for (const int index : indices) {
        const std::shared_ptr<PDFPage> page = m_document->page(index);
        if (!page)
            continue;
        wanted.insert(page.get());
        if (Entry* entry = entryOf(*page))
            entry->kept = picture(index);
        if (!isUpToDate(*page, index))
            m_waiting.push_back(index);
    }
    m_entries.removeIf([](QHash<const PDFPage*, Entry>::iterator entry) { return entry->page.expired(); });
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry)
        if (!wanted.contains(entry.key()))
            entry->kept = {};
    for (const auto& job : m_running)
        if (!wanted.contains(job->page.lock().get()))
            job->cancelled = true;
    startNext();
}

void ThumbnailLoader::startNext() {
    while (!m_waiting.empty() && static_cast<int>(m_running.size()) < m_pool.maxThreadCount()) {
        const int index = m_waiting.front();
        m_waiting.pop_front();
        const std::shared_ptr<PDFPage> page = m_document->page(index);
        const auto isDrawing = [this, &page](const std::shared_ptr<Job>& job) {
            return job->page.lock() == page && job->revision == page->revision() && job->pixels == m_pixels &&
                   !job->cancelled;
        };
        if (!page || isUpToDate(*page, index) || std::any_of(m_running.begin(), m_running.end(), isDrawing))
            continue;
        const auto job = std::make_shared<Job>();
        job->page = page;
        job->revision = page->revision();
        job->pixels = m_pixels;
        job->hasLiveAnnotations = !page->liveAnnotations().empty();
        m_running.push_back(job);
        QTimer::singleShot(drawingTimeLimit, this, [weakJob = std::weak_ptr(job)] {
            if (const auto slow = weakJob.lock())
                slow->tookTooLong = slow->cancelled = true;
        });
        m_pool.start([this, job, picture = PagePicture(*page, m_pixels)] {
            QImage image = picture.image(job->cancelled);
            QMetaObject::invokeMethod(
                this, [this, job, image = std::move(image)] { finish(job, image); }, Qt::QueuedConnection);
        });
    }
}

void ThumbnailLoader::finish(const std::shared_ptr<Job>& job, const QImage& image) {
    std::erase(m_running, job);
    const std::shared_ptr<PDFPage> page = job->page.lock();
    const int index = m_document->index(page.get());
    const bool wasGivenUp = job->cancelled && image.isNull() && !job->tookTooLong;
    if (index >= 0 && !wasGivenUp) {
        const QString key = ThumbnailCache::key(*m_document, index);
        ThumbnailCache::insert(key, image);
        m_owners.insert(key, page.get());
        Entry& entry = m_entries[page.get()];
        entry = {page, job->revision, job->pixels, job->cancelled ? QImage() : image, image.isNull()};
        // Which of the file's annotations have to draw themselves is known once the page has been drawn.
        if (!job->hasLiveAnnotations && !page->liveAnnotations().empty()) {
            entry.pixels = {};
            m_waiting.push_front(index);
        }
        Q_EMIT drawn(index);
    }
    startNext();
}
