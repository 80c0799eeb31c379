#pragma once

#include "BackgroundTask.h"
#include "PDFPageContent.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

/// Puts the text of pages on the clipboard, without holding up the main thread for a long document.
class SelectionCopier : public QObject {
    Q_OBJECT

public:
    struct Span {
        PDFPageContent content;
        int start = 0;
        std::optional<int> end; ///< one past the last offset; none for the end of the page
    };

    /// True for what can be read while the reader waits.
    [[nodiscard]] static bool isShort(const std::vector<Span>& spans);
    /// The text, spans joined with a newline, as `PDFSelection::string` joins its ranges. Any thread; stops early with
    /// what it has when `stop` is requested. Tells `spanRead` how many have been read, after each.
    [[nodiscard]] static QString read(const std::vector<Span>& spans, const std::stop_token& stop = {},
                                      const std::function<void(int)>& spanRead = {});

    /// An earlier copy that still reads is dropped. The clipboard is left alone when there is no text.
    void copy(std::vector<Span> spans);
    /// What is still being read isn't put on the clipboard.
    void cancel();
    [[nodiscard]] bool isReading() const { return m_isReading; }

Q_SIGNALS:
    /// While many spans are read.
    void progressed(int spansRead, int spanCount);
    /// It was copied, or given up.
    void ended();

private:
    static void put(const QString& text);
    void end();

    int m_job = 0; // what an earlier one still sends is too late
    bool m_isReading = false;
    BackgroundTask m_reading; // last: it ends first
};
