#pragma once

#include "BackgroundTask.h"
#include "PDFPageContent.h"
#include "SpanReader.h"

#include <QObject>

#include <memory>
#include <utility>
#include <vector>

class PageText;

/// The texts of the pages on the screen, read off the main thread, so that the pointer over text and a painted
/// selection cost nothing. Main thread only.
class PageTexts : public QObject {
    Q_OBJECT

public:
    explicit PageTexts(QObject* parent = nullptr) : QObject(parent) {}

    /// Starts reading what is missing of these texts and forgets all others.
    void want(const std::vector<PDFPageContent>& contents);
    /// Null when it hasn't been read.
    [[nodiscard]] std::shared_ptr<const PageText> text(const PDFPageContent& content) const;
    /// Reads it on this thread when need be: some milliseconds. Null for a page without a source, and for one that asks
    /// for so much work that the person who clicked would wait: that is read in the background all the same.
    [[nodiscard]] std::shared_ptr<const PageText> textNow(const PDFPageContent& content) const;

    /// Whether there is text in any of the stretches. Those whose texts aren't there are read on this thread, in their
    /// order, for as long as a person who clicked waits gladly; what isn't reached by then counts as without.
    [[nodiscard]] bool holdText(const std::vector<SpanReader::Span>& stretches) const;

Q_SIGNALS:
    void loaded();

private:
    using Entry = std::pair<PDFPageContent, std::shared_ptr<const PageText>>;

    void take(std::vector<Entry> entries);

    std::vector<PDFPageContent> m_wanted;
    std::vector<Entry> m_texts;
    mutable std::vector<PDFPageContent> m_slow; // wanted, and not to be waited for again
    BackgroundTask m_reading;                   // last: it ends first
};
