#pragma once

#include "AnnotatedTiles.h"
#include "TileCache.h"
#include "TilePlan.h"
#include "TileRenderer.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <unordered_map>
#include <vector>

class QPainter;

/// The pictures of the pages: what is drawn already, what is being drawn, and what stands in meanwhile.
/// Main thread only; nothing is drawn on it.
class PageTiles : public QObject {
    Q_OBJECT

public:
    explicit PageTiles(QObject* parent = nullptr);

    /// For sharp tiles, in bytes; small pictures that stand in take a little more.
    void setByteLimit(qint64 bytes);
    [[nodiscard]] qint64 byteLimit() const { return m_sharp.byteLimit(); }
    [[nodiscard]] qint64 bytes() const { return m_sharp.bytes() + m_standIns.bytes() + m_annotated.bytes(); }

    /// Sets the threads to what is missing. To be called whenever something moved, before it is painted.
    void plan(TilePlan::Situation situation);
    /// Annotations of a page changed within `area` (page coordinates; everywhere when it is null).
    void noteChange(const PDFPage& page, const QRectF& area) { m_annotated.noteChange(page, area); }

    /// Paints what there is of a page within `area`, on white, with a painter set to device pixels of the view. Live
    /// annotations are over it in any case.
    /// False when not all of it is sharp.
    bool paint(QPainter& painter, const PlacedPage& page, const QRectF& area);
    /// True when `paint` would show all of the area sharp, or knows that it can't be drawn.
    [[nodiscard]] bool isSharp(const PlacedPage& page, const QRectF& area) const;
    /// True when the page was tried last and couldn't be drawn. It may be damaged, or memory may be short: while it is
    /// wanted it is tried again after a pause, which grows from try to try.
    [[nodiscard]] bool isUnreadable(const PDFPageContent& content) const { return m_unreadable.contains(content); }

    /// Drops all pictures but the sharp ones of what is on the screen, and cancels what is being drawn.
    void dropUnseen(const std::vector<PlacedPage>& visible, const QRectF& view);
    /// The view is hidden: drops all but the small pictures that stand in, and cancels what is being drawn. Pages that
    /// couldn't be drawn are tried again when they are wanted: memory may have been short.
    void keepStandIns();
    /// Drops all pictures and cancels what is being drawn.
    void clear();

Q_SIGNALS:
    /// What this tile covers can be painted better now.
    void tileArrived(const TileKey& key);
    /// A page that couldn't be drawn may be tried again: plan anew.
    void retryDue();

private:
    using Clock = std::chrono::steady_clock;
    struct Failure {
        Clock::time_point nextTry;
        Clock::duration pause; // after the last try
    };

    void noteFailure(const PDFPageContent& content);
    void scheduleRetry(const std::vector<PlacedPage>& wanted);
    void take(const TileKey& key, const QImage& image);
    void beginFrame(const std::vector<PlacedPage>& pages, const QRectF& view);
    [[nodiscard]] bool isDrawn(const TileKey& key) const;
    void paintStandIns(QPainter& painter, const PlacedPage& page, const QRegion& holes);

    TileCache m_sharp;
    TileCache m_standIns;
    AnnotatedTiles m_annotated;
    std::unordered_map<PDFPageContent, Failure, PageContentHash> m_unreadable;
    QTimer m_retry;
    TileRenderer m_renderer; // last: its threads end first
};
