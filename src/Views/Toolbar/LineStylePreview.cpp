#include "LineStylePreview.h"

#include "AnnotationDrawing.h"
#include "DrawingPainter.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>

/// In an area of `LineStylePreview::size`, with the end as the page draws it.
static void drawLine(QPainter& painter, PDFLineStyle style, const QColor& color) {
    constexpr qreal middle = LineStylePreview::size.height() / 2.0;
    constexpr qreal lineWidth = 1.75;
    constexpr qreal margin = 5; // what is drawn around the end of a line
    const QPointF start(margin / 2, middle);
    const QPointF end(LineStylePreview::size.width() - margin, middle);
    AnnotationDrawing::Part line;
    line.path.moveTo(start);
    line.path.lineTo(end);
    line.stroke = color;
    line.lineWidth = lineWidth;
    line.cap = Qt::RoundCap;
    AnnotationDrawing drawing;
    drawing.parts = {line, LineEnding::part(style, end, 0, lineWidth, color)};
    painter.setRenderHint(QPainter::Antialiasing);
    DrawingPainter::paint(drawing, painter);
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
