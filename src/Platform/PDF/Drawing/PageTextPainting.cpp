#include "PageTextPainting.h"

#include <QImage>
#include <QPainter>
#include <QStringList>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace {

/// Longer than the text of a box can be on a page.
constexpr double unlimited = 1e6;

void setFont(QPainter& painter, QFont font) {
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    font.setPointSizeF(size * 72.0 / painter.device()->logicalDpiY());
    // Fitted to the pixels of one device, letters would have other widths than on the next.
    font.setHintingPreference(QFont::PreferNoHinting);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
}

/// `draw` is given the box as the painter has it then: its upper left corner is the origin, and y goes down.
template <typename Draw>
void drawText(QPainter& painter, const QString& text, const QRectF& box, const QFont& font, const QColor& color,
              Draw draw) {
    if (text.isEmpty() || !box.isValid())
        return;
    painter.save();
    painter.translate(box.left(), box.bottom());
    painter.scale(1, -1);
    const QRectF upright(QPointF(), box.size());
    painter.setClipRect(upright, Qt::IntersectClip);
    setFont(painter, font);
    painter.setPen(color);
    draw(upright);
    painter.restore();
}

QStringList paragraphs(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (const QChar end : {QChar(u'\r'), QChar(QChar::ParagraphSeparator), QChar(QChar::LineSeparator)})
        text.replace(end, u'\n');
    return text.split(u'\n');
}

/// Breaks a paragraph into lines from the top at `y` down, on the side where its script begins; lines that would begin
/// below `bottom` are left out. Gives where the next paragraph begins.
double layOut(QTextLayout& layout, double width, double y, double bottom) {
    const bool fromTheRight = layout.text().isRightToLeft();
    QTextOption option(fromTheRight ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(fromTheRight ? Qt::RightToLeft : Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    while (y < bottom) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLeadingIncluded(true);
        line.setLineWidth(width);
        line.setPosition(QPointF(0, y));
        y += line.height();
    }
    layout.endLayout();
    return y;
}

} // namespace

void PageTextPainting::drawWrapped(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                   const QColor& color) {
    drawText(painter, text, box, font, color, [&](const QRectF& upright) {
        double y = 0;
        for (const QString& paragraph : paragraphs(text)) {
            if (y >= upright.height())
                break;
            QTextLayout layout(paragraph, painter.font(), painter.device());
            y = layOut(layout, upright.width(), y, upright.height());
            layout.draw(&painter, QPointF());
        }
    });
}

QSizeF PageTextPainting::wrappedSize(const QString& text, const QFont& font, double width) {
    if (text.isEmpty())
        return {};
    QImage anywhere(1, 1, QImage::Format_ARGB32_Premultiplied); // all devices break lines at the same places
    QPainter painter(&anywhere);
    setFont(painter, font);
    QSizeF size;
    for (const QString& paragraph : paragraphs(text)) {
        QTextLayout layout(paragraph, painter.font(), &anywhere);
        size.setHeight(layOut(layout, std::clamp(width, 1.0, unlimited), size.height(), unlimited));
        for (int i = 0; i < layout.lineCount(); ++i)
            size.setWidth(std::max(size.width(), layout.lineAt(i).naturalTextWidth()));
    }
    return {std::ceil(size.width()), std::ceil(size.height())};
}

void PageTextPainting::drawLine(QPainter& painter, const QString& text, const QRectF& box, const QFont& font,
                                const QColor& color) {
    constexpr int flags = int(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine;
    drawText(painter, text, box, font, color, [&](const QRectF& upright) { painter.drawText(upright, flags, text); });
}

void PageTextPainting::drawAt(QPainter& painter, const QString& text, QPointF at, const QFont& font,
                              const QColor& color) {
    painter.save();
    painter.translate(at);
    painter.scale(1, -1);
    setFont(painter, font);
    painter.setPen(color);
    painter.drawText(QPointF(), text);
    painter.restore();
}
