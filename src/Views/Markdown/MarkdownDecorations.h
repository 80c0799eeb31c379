#pragma once

#include <QRectF>

#include <vector>

class QPainter;
class QPalette;
class QTextDocument;

/// What is painted behind the text of a reply: the grounds of code and tables, the lines below the headers of tables
/// and the bars beside quotes.
class MarkdownDecorations {
public:
    static constexpr double padding = 8;       ///< between a ground and its text, in pixels
    static constexpr double quoteBarWidth = 3; ///< in pixels

    /// Positions are those of text blocks in the document.
    void addCode(int firstPosition, int lastPosition) { m_items.push_back({Kind::code, firstPosition, lastPosition}); }
    void addQuote(int position) { m_items.push_back({Kind::quote, position, position}); }
    /// For the table whose first cell has the position.
    void addTable(int position) { m_items.push_back({Kind::table, position, position}); }

    /// Finds their places again after the document has been laid out.
    void place(const QTextDocument& document);

    /// In the coordinates of the document; what is outside of `clip` isn't painted.
    void paint(QPainter& painter, const QRectF& clip, const QPalette& palette) const;

private:
    enum class Kind { code, quote, table };
    struct Item {
        Kind kind;
        int firstPosition;
        int lastPosition;
        QRectF area = {};
        double dividerY = 0; // of tables
    };
    static void placeTable(Item& item, const QTextDocument& document);
    std::vector<Item> m_items; // from top to bottom
};
