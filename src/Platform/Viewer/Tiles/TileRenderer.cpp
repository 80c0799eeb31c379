#include "TileRenderer.h"

#include <algorithm>

/// About as many pages as the engine keeps recorded.
static constexpr std::size_t recordingsRemembered = 6;

TileRenderer::TileRenderer(int workers, QObject* parent) : QObject(parent) {
    for (int i = 0; i < workers; ++i)
        m_threads.emplace_back([this] { work(); });
}

TileRenderer::~TileRenderer() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_wanted.clear();
        for (const auto& running : m_running)
            running->cancelled = true;
    }
    m_wake.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void TileRenderer::setWanted(std::vector<TileJob> jobs) {
    std::deque<TileJob> dropped; // destroyed after the lock: they may hold the last reference to a file
    {
        const std::lock_guard lock(m_mutex);
        dropped.swap(m_wanted);
        for (const auto& running : m_running) {
            if (std::none_of(jobs.begin(), jobs.end(), [&](const TileJob& job) { return job.key == running->key; }))
                running->cancelled = true;
        }
        for (TileJob& job : jobs) {
            if (!isUnderWay(job.key))
                m_wanted.push_back(std::move(job));
        }
    }
    m_wake.notify_all();
}

void TileRenderer::reset() {
    setWanted({});
    std::vector<Result> dropped;
    const std::lock_guard lock(m_mutex);
    dropped.swap(m_results);
    m_recordings.clear();
}

bool TileRenderer::isUnderWay(const TileKey& key) const {
    return std::any_of(m_running.begin(), m_running.end(),
                       [&](const auto& running) { return running->key == key && !running->cancelled; }) ||
           std::any_of(m_results.begin(), m_results.end(), [&](const Result& result) { return result.key == key; });
}

/// The most wanted tile, but for a page that another thread is just reading for the first time: once that is done its
/// other tiles cost little, while reading it twice costs twice.
std::deque<TileJob>::iterator TileRenderer::next() {
    return std::find_if(m_wanted.begin(), m_wanted.end(), [this](const TileJob& job) {
        const PDFPageContent& content = job.key.look.content;
        return std::find(m_recordings.begin(), m_recordings.end(), content) != m_recordings.end() ||
               std::none_of(m_running.begin(), m_running.end(),
                            [&](const auto& running) { return running->key.look.content == content; });
    });
}

void TileRenderer::work() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        auto job = m_wanted.end();
        m_wake.wait(lock, [&] { return m_stopping || (job = next()) != m_wanted.end(); });
        if (m_stopping)
            return;
        const PageRenderRequest request = std::move(job->request);
        const auto running = std::make_shared<Running>();
        running->key = std::move(job->key);
        m_wanted.erase(job);
        m_running.push_back(running);
        lock.unlock();

        QImage image = PageRenderer::render(request, &running->cancelled);

        lock.lock();
        std::erase(m_running, running);
        if (!running->cancelled) {
            if (std::find(m_recordings.begin(), m_recordings.end(), request.content) == m_recordings.end())
                m_recordings.push_back(request.content);
            if (m_recordings.size() > recordingsRemembered)
                m_recordings.pop_front();
            m_results.push_back({running->key, std::move(image)});
            if (m_results.size() == 1)
                QMetaObject::invokeMethod(this, &TileRenderer::deliver, Qt::QueuedConnection);
        }
        m_wake.notify_all(); // a tile of the same page may have waited for this one
    }
}

void TileRenderer::deliver() {
    std::vector<Result> results;
    {
        const std::lock_guard lock(m_mutex);
        results.swap(m_results);
    }
    for (const Result& result : results)
        Q_EMIT rendered(result.key, result.image);
}
