#include "MarkdownDecorations.h"

#include "MarkdownDocument.h"
#include "MarkdownStyle.h"
#include "MarkdownTableWriter.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPalette>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>

static constexpr double codeRadius = 6;
static constexpr double tableRadius = 8;
static constexpr float groundOpacity = 0.06F;
static constexpr float barOpacity = 0.35F;
static constexpr float dividerOpacity = 0.18F;

static QRectF blockArea(const QTextDocument& document, int position) {
    return document.documentLayout()->blockBoundingRect(document.findBlock(position));
}

static QColor faded(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

void MarkdownDecorations::place(const QTextDocument& document) {
    const double width = document.textWidth();
    for (Item& item : m_items) {
        const QRectF first = blockArea(document, item.firstPosition);
        const QRectF last = blockArea(document, item.lastPosition);
        switch (item.kind) {
        case Kind::code:
            item.area = QRectF(0, first.top() - padding, width, last.bottom() - first.top() + 2 * padding);
            break;
        case Kind::quote:
            item.area = QRectF(0, first.top(), quoteBarWidth, last.height());
            break;
        case Kind::table:
            placeTable(item, document);
            break;
        }
    }
}

void MarkdownDecorations::placeTable(Item& item, const QTextDocument& document) {
    QTextCursor cursor(document.findBlock(item.firstPosition));
    const QTextTable* table = cursor.currentTable();
    const QTextTableFormat format = table->format();
    // The frame's place leaves its margins out, its size has them in.
    const QRectF frame = document.documentLayout()->frameBoundingRect(const_cast<QTextTable*>(table));
    const double gridWidth = frame.width() - format.leftMargin() - format.rightMargin();
    const double gridHeight = frame.height() - format.topMargin() - format.bottomMargin();
    item.area = QRectF(frame.left() - padding, frame.top() - padding, gridWidth + 2 * padding,
                       gridHeight + 2 * padding - MarkdownDocument::lineSpacing);
    item.dividerY = frame.top() + gridHeight;
    if (table->rows() > 1) {
        const QRectF belowHeader = blockArea(document, table->cellAt(1, 0).firstPosition());
        item.dividerY = belowHeader.top() - MarkdownTableWriter::dividerDistance;
    }
}

void MarkdownDecorations::paint(QPainter& painter, const QRectF& clip, const QPalette& palette) const {
    const QColor primary = palette.color(QPalette::Text);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    for (const Item& item : m_items) {
        if (!item.area.intersects(clip))
            continue;
        if (item.kind == Kind::quote) {
            painter.setBrush(faded(MarkdownStyle::secondaryColor(palette), barOpacity));
            painter.drawRoundedRect(item.area, quoteBarWidth / 2, quoteBarWidth / 2);
            continue;
        }
        const double radius = item.kind == Kind::table ? tableRadius : codeRadius;
        painter.setBrush(faded(primary, groundOpacity));
        painter.drawRoundedRect(item.area, radius, radius);
        if (item.kind == Kind::table)
            painter.fillRect(QRectF(item.area.left() + padding, item.dividerY, item.area.width() - 2 * padding, 1),
                             faded(primary, dividerOpacity));
    }
    painter.restore();
}
