#pragma once

#include "DisplayText.h"
#include "MarkdownStyle.h"
#include "MathImageSource.h"

#include <QColor>
#include <QTextFormat>

class QTextCursor;
struct InlineRun;

/// Writes runs and formulas at a cursor of a text document whose undo is off.
class MarkdownTextWriter {
public:
    /// Properties of the character formats that it writes.
    enum Property {
        /// True for a place to break a long word that the text hasn't got.
        insertedBreak = QTextFormat::UserProperty,
        /// What the image of a formula stands for, with its delimiters.
        formulaSource
    };

    /// More formulas of a reply stay source: each may take a while to draw.
    static constexpr int mostImages = 1'000;

    /// `pageCount` is that of the document that words can name a page of; 0 for none.
    MarkdownTextWriter(const MarkdownStyle& style, const QColor& formulaColor, const MathImageSource& mathImages,
                       int pageCount);

    [[nodiscard]] const MarkdownStyle& style() const { return m_style; }

    /// A text with inline marks.
    void writeInline(QTextCursor& cursor, const QString& raw, const QTextCharFormat& format);

    /// A text as it is.
    void writePlain(QTextCursor& cursor, const QString& text, const QTextCharFormat& format);

    /// A formula on a line of its own, or its source.
    void writeEquation(QTextCursor& cursor, const QString& latex);

private:
    void writeText(QTextCursor& cursor, const QString& text, const QTextCharFormat& format);
    void writeImage(QTextCursor& cursor, const QString& source, const QImage& image);

    MarkdownStyle m_style;
    QColor m_formulaColor;
    MathImageSource m_mathImages; // empty for no images
    int m_pageCount;
    DisplayText::WordBreaker m_breaker;
    int m_imageCount = 0; // asked for
    int m_nameCount = 0;  // of the images in the text
};
