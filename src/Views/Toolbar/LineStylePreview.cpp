#include "LineStylePreview.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

/// In an area of `LineStylePreview::size`.
static void drawLine(QPainter& painter, PDFLineStyle style, const QColor& color) {
    constexpr qreal middle = LineStylePreview::size.height() / 2.0;
    constexpr qreal start = 3;
    constexpr qreal end = LineStylePreview::size.width() - start;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(color);
    const auto lineUpTo = [&](qreal x) { painter.drawLine(QPointF(start, middle), QPointF(x, middle)); };
    switch (style) {
    case PDFLineStyle::none:
        lineUpTo(end);
        break;
    case PDFLineStyle::square:
        lineUpTo(end - 7);
        painter.drawRect(QRectF(end - 7, middle - 3.5, 7, 7));
        break;
    case PDFLineStyle::circle:
        lineUpTo(end - 7);
        painter.drawEllipse(QPointF(end - 3.5, middle), 3.75, 3.75);
        break;
    case PDFLineStyle::diamond:
        lineUpTo(end - 9);
        painter.drawPolygon(
            QPolygonF({{end - 9, middle}, {end - 4.5, middle - 4.5}, {end, middle}, {end - 4.5, middle + 4.5}}));
        break;
    case PDFLineStyle::openArrow:
        lineUpTo(end);
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(QPolygonF({{end - 7, middle - 5}, {end, middle}, {end - 7, middle + 5}}));
        break;
    case PDFLineStyle::closedArrow:
        lineUpTo(end - 8);
        painter.drawPolygon(QPolygonF({{end - 8, middle - 4.5}, {end, middle}, {end - 8, middle + 4.5}}));
        break;
    }
}

namespace {

class LineIconEngine : public QIconEngine {
public:
    explicit LineIconEngine(PDFLineStyle style) : m_style(style) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->translate(rect.topLeft());
        painter->scale(static_cast<qreal>(rect.width()) / LineStylePreview::size.width(),
                       static_cast<qreal>(rect.height()) / LineStylePreview::size.height());
        drawLine(*painter, m_style, QGuiApplication::palette().color(group, QPalette::ButtonText));
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new LineIconEngine(m_style); }

private:
    PDFLineStyle m_style;
};

} // namespace

LineStylePreview::LineStylePreview(PDFLineStyle style, QWidget* parent) : QWidget(parent), m_style(style) {
    setFixedSize(size);
}

LineStylePreview::~LineStylePreview() = default;

QIcon LineStylePreview::icon(PDFLineStyle style) {
    return QIcon(new LineIconEngine(style));
}

void LineStylePreview::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawLine(painter, m_style, palette().color(foregroundRole()));
}
