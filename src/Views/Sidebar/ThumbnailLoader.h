#pragma once

#include <QHash>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <vector>

class PDFDocument;
class PDFPage;

/// Draws the thumbnails of a document's pages on threads of its own, into the `ThumbnailCache`. A picture is given out
/// for the page that it was drawn for only, wherever that page stands meanwhile. Main thread only.
class ThumbnailLoader : public QObject {
    Q_OBJECT

public:
    /// The size in pixels that a thumbnail is drawn at unless more are asked for.
    static constexpr QSize usualSize{280, 360};

    /// A page that takes longer to draw gets no thumbnail, so that the others get theirs.
    static constexpr std::chrono::seconds drawingTimeLimit{5};

    explicit ThumbnailLoader(std::shared_ptr<PDFDocument> document, QObject* parent = nullptr);
    /// Cancels what is being drawn and waits for its end, which comes soon.
    ~ThumbnailLoader() override;

    /// What there is for the page at that place: perhaps as it was before its last change, or smaller than asked for;
    /// null when there is nothing yet.
    [[nodiscard]] QImage picture(int index);

    /// Draws what isn't up to date of the pages at these places, the most urgent first, to fit into `pixels`. Whatever
    /// was asked for before and isn't asked for now is given up.
    void want(const std::vector<int>& indices, QSize pixels);

    /// True when there is nothing more to draw of what is asked for.
    [[nodiscard]] bool isIdle() const { return m_waiting.empty() && m_running.empty(); }

Q_SIGNALS:
    void drawn(int index);

private:
    struct Job;
    /// What the cache holds for a place, or held.
    struct Entry {
        std::weak_ptr<PDFPage> page;
        quint64 revision = 0; ///< of the page when it was drawn
        QSize pixels;         ///< that it fits into
        QImage kept;          ///< while the page is asked for, so that it is there also when the cache has been emptied
        bool failed = false;  ///< it can't be drawn, and isn't tried again
    };

    [[nodiscard]] Entry* entryOf(const PDFPage& page);
    [[nodiscard]] bool isUpToDate(const PDFPage& page, int index);
    void startNext();
    void finish(const std::shared_ptr<Job>& job, const QImage& image);

    std::shared_ptr<PDFDocument> m_document;
    QThreadPool m_pool;
    QHash<const PDFPage*, Entry> m_entries;
    QHash<QString, const PDFPage*> m_owners; ///< of what the cache holds under a key
    std::deque<int> m_waiting;
    std::vector<std::shared_ptr<Job>> m_running;
    QSize m_pixels = usualSize;
};
