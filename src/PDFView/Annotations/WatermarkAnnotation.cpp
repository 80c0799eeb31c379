#include "WatermarkAnnotation.h"

#include "AnnotationFont.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace {

constexpr int outlineSize = 1000; // pixels, at which letters have their true shapes

/// The words around the origin, in letters of `outlineSize`, y down. Outlines look the same on every screen, in every
/// other reader and on paper, and where letters overlap they don't get darker.
QPainterPath outline(const QString& text) {
    QFont font = platformFont(AnnotationFont::system, outlineSize, QFont::Bold);
    font.setPixelSize(outlineSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(font);
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.addText(-metrics.horizontalAdvance(text) / 2, (metrics.ascent() - metrics.descent()) / 2, font, text);
    return path;
}

} // namespace

WatermarkAnnotation::WatermarkAnnotation(QString text, double opacity, const QRectF& bounds)
    : PDFAnnotation(bounds, PDFAnnotationSubtype::stamp), m_text(std::move(text)), m_opacity(opacity) {}

WatermarkAnnotation::~WatermarkAnnotation() = default;

double WatermarkAnnotation::fontSize(QSizeF page) {
    constexpr double share = 0.12; // of the shorter side
    constexpr double smallest = 24;
    return std::max(std::min(page.width(), page.height()) * share, smallest);
}

void WatermarkAnnotation::draw(PDFDisplayBox /*box*/, QPainter& painter) const {
    constexpr double rise = 45; // degrees
    const QRectF upright = uprightBounds();
    const double scale = fontSize(upright.size()) / outlineSize;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(upright.center());
    painter.rotate(rise);
    painter.scale(scale, -scale);
    painter.fillPath(outline(m_text), QColor::fromRgbF(0, 0, 0, float(m_opacity)));
    painter.restore();
}

QByteArray WatermarkAnnotation::sharedLook() const {
    return "watermark " + QByteArray::number(m_opacity) + ' ' + m_text.toUtf8();
}

std::shared_ptr<PDFAnnotation> WatermarkAnnotation::copy() const {
    return copied(std::make_shared<WatermarkAnnotation>(m_text, m_opacity, bounds()));
}
