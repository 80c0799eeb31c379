#pragma once

#include "PDFSelection.h"
#include "SpanReader.h"
#include "TextStretch.h"

#include <QObject>
#include <QRectF>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class PDFDocument;
class PDFPage;
class PageText;

/// What is selected in the view: a stretch of text, or any ranges that the program asked for. Main thread only.
class ViewSelection : public QObject {
    Q_OBJECT

public:
    explicit ViewSelection(QObject* parent = nullptr);

    /// Clears. The document is not kept alive.
    void setDocument(const std::shared_ptr<PDFDocument>& document);
    /// The list of pages changed: what left the document isn't selected any more.
    void dropGonePages();

    /// True while nothing is selected. All of a document without text counts as something until it is asked for.
    [[nodiscard]] bool isEmpty() const { return !m_stretch && !m_ranges; }
    /// None when nothing is selected or it holds no text. The first call for a stretch over several pages reads their
    /// texts, which takes seconds for a thousand pages; `isEmpty`, `rects` and `spans` don't.
    [[nodiscard]] std::optional<PDFSelection> current() const;

    void set(const std::optional<PDFSelection>& selection);
    void set(const std::optional<TextStretch>& stretch);
    void selectAll();

    /// What is selected on `page`, as [start, end) in its text; an end may be past that of the text.
    [[nodiscard]] std::vector<std::pair<int, int>> rangesOn(const PDFPage& page) const;
    /// The same for `text`, that of the page: one rectangle a line, page coordinates.
    [[nodiscard]] std::vector<QRectF> rects(const PDFPage& page, const PageText& text) const;

    /// Reads what is selected, tells how far it has come, and gives it up.
    [[nodiscard]] SpanReader& reader() { return m_reader; }
    /// What is selected, page by page.
    [[nodiscard]] std::vector<SpanReader::Span> spans() const;
    /// Offers the text of a few pages for pasting with the middle button, where the desktop has that.
    void offerForMiddleButton();

Q_SIGNALS:
    void changed();

private:
    std::weak_ptr<PDFDocument> m_document;
    std::optional<TextStretch> m_stretch;
    mutable std::optional<PDFSelection> m_ranges; // also that of the stretch, once it was asked for
    SpanReader m_reader;
};
