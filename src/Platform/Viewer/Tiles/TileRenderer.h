#pragma once

#include "PageRenderer.h"
#include "TileKey.h"

#include <QImage>
#include <QObject>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// A tile to draw: its name and how to draw it.
struct TileJob {
    TileKey key;
    PageRenderRequest request;
};

/// Draws tiles on threads of its own, the most wanted first. Main thread only.
class TileRenderer : public QObject {
    Q_OBJECT

public:
    explicit TileRenderer(int workers = 2, QObject* parent = nullptr);
    /// Cancels what is being drawn and waits for the threads.
    ~TileRenderer() override;

    /// Replaces what was wanted. Tiles that are being drawn go on when they are still wanted and are cancelled
    /// otherwise.
    void setWanted(std::vector<TileJob> jobs);
    /// Wants nothing any more; nothing that was asked for so far arrives.
    void reset();

Q_SIGNALS:
    /// A null image for a page that can't be drawn. Tiles that nobody wants any more may still arrive.
    void rendered(const TileKey& key, const QImage& image);

private:
    struct Running {
        TileKey key;
        std::atomic<bool> cancelled{false};
    };
    struct Result {
        TileKey key;
        QImage image;
    };

    void work();
    [[nodiscard]] std::deque<TileJob>::iterator next();
    [[nodiscard]] bool isUnderWay(const TileKey& key) const;
    void deliver();

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_wake;
    std::deque<TileJob> m_wanted;
    std::vector<std::shared_ptr<Running>> m_running;
    std::vector<Result> m_results;           // not yet delivered
    std::deque<PDFPageContent> m_recordings; // pages that the engine has seen lately, so that a tile is a mere replay
    bool m_stopping = false;

    std::vector<std::thread> m_threads;
};
