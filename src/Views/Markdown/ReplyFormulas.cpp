#include "ReplyFormulas.h"

#include "MathImageRenderer.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

/// A text document puts the middle of an image a quarter of an x-height above the baseline, so an image whose baseline
/// is elsewhere gets clear rows above or below. `halfXHeight` in points.
static QImage onBaseline(const MathImageRenderer::RenderedFormula& formula, double halfXHeight) {
    const QImage& image = formula.image;
    const double ratio = image.devicePixelRatio();
    const double ascent = image.deviceIndependentSize().height() - formula.descent;
    const double height = std::max(2 * ascent - halfXHeight, 2 * formula.descent + halfXHeight);
    const double above = (height + halfXHeight) / 2 - ascent;
    QImage padded(image.width(), int(std::ceil(height * ratio)), QImage::Format_ARGB32_Premultiplied);
    if (padded.isNull())
        return image;
    padded.setDevicePixelRatio(ratio);
    padded.fill(Qt::transparent);
    QPainter painter(&padded);
    // On whole pixels, or the letters would blur.
    painter.drawImage(QPointF(0, std::round(above * ratio) / ratio), image);
    painter.end();
    return padded;
}

MathImageSource ReplyFormulas::source(const QWidget& widget) {
    return [&widget](const QString& latex, double fontSize, const QColor& color) {
        const auto formula = MathImageRenderer::render(latex, fontSize, color, widget.devicePixelRatioF());
        return formula ? onBaseline(*formula, QFontMetricsF(widget.font()).xHeight() / 2) : QImage();
    };
}
