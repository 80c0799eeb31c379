#pragma once

#include "BackgroundTask.h"
#include "PDFPageContent.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

/// Reads the text of pages, for the clipboard or for whoever else wants it, without holding up the main thread for
/// long.
class SpanReader : public QObject {
    Q_OBJECT

public:
    using Use = std::function<void(const QString& text)>;
    struct Span {
        PDFPageContent content;
        int start = 0;
        std::optional<int> end; ///< one past the last offset; none for the end of the page
    };

    /// True for what can be read while the reader waits.
    [[nodiscard]] static bool isShort(const std::vector<Span>& spans);
    /// The text, spans joined with a newline, as `PDFSelection::string` joins its ranges. Any thread; stops early with
    /// what it has when `stop` is requested. Tells `spanRead` how many have been read, before each.
    [[nodiscard]] static QString read(const std::vector<Span>& spans, const std::stop_token& stop = {},
                                      const std::function<void(int)>& spanRead = {});

    /// Gives the text to `use`, on this thread: at once when it is soon read, and otherwise when it has been read on
    /// another. What is still being read for an earlier call is dropped, and its `use` isn't called.
    void readFor(std::vector<Span> spans, Use use);
    /// The same for the clipboard, which is left alone when there is no text.
    void copy(std::vector<Span> spans);
    /// What is still being read is used for nothing.
    void cancel();
    [[nodiscard]] bool isReading() const { return m_isReading; }

Q_SIGNALS:
    /// While spans are read on another thread.
    void progressed(int spansRead, int spanCount);
    /// Such a reading was used, or given up.
    void ended();

private:
    void end();

    int m_job = 0; // what an earlier one still sends is too late
    bool m_isReading = false;
    BackgroundTask m_reading; // last: it ends first
};
