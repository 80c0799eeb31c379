#include "DimensionLine.h"

#include <QFontMetricsF>

#include <cmath>
#include <numbers>

namespace {

constexpr double captionPadding = 3; // points on either side
constexpr double defaultSize = 10;   // points

/// Of length 1, to the left of the line's direction.
QPointF normalOf(const PDFLineData& line) {
    const QPointF run = line.endPoint - line.startPoint;
    const double length = std::hypot(run.x(), run.y());
    return length > 0 ? QPointF(-run.y(), run.x()) / length : QPointF();
}

} // namespace

DimensionLine::Run DimensionLine::runOf(const PDFLineData& line) {
    const QPointF shift = normalOf(line) * line.leaderLength;
    return {line.startPoint + shift, line.endPoint + shift};
}

QPainterPath DimensionLine::leaders(const PDFLineData& line) {
    QPainterPath path;
    if (line.leaderLength == 0)
        return path;
    const QPointF out = normalOf(line) * (line.leaderLength < 0 ? -1 : 1);
    for (const QPointF point : {line.startPoint, line.endPoint}) {
        path.moveTo(point + out * line.leaderOffset);
        path.lineTo(point + out * (std::abs(line.leaderLength) + line.leaderExtension));
    }
    return path;
}

std::optional<AnnotationDrawing::Label> DimensionLine::caption(const PDFAnnotationValues& values) {
    const Run run = runOf(values.line);
    const QPointF way = run.end - run.start;
    const QString words = values.contents.simplified();
    if (!values.line.hasCaption || words.isEmpty() || way.isNull())
        return std::nullopt;
    AnnotationDrawing::Label label;
    label.text = words;
    label.font = values.text.font.value_or(QFont(QStringLiteral("Helvetica"), int(defaultSize)));
    label.color = values.text.color.value_or(values.color.value_or(QColor(Qt::black)));
    // Measured large, where widths aren't rounded to pixels.
    constexpr double measured = 100;
    const double size = label.font.pointSizeF() > 0 ? label.font.pointSizeF() : defaultSize;
    QFont large = label.font;
    large.setPixelSize(int(measured));
    large.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(large);
    const double width = metrics.horizontalAdvance(words) * size / measured + 2 * captionPadding;
    const double height = metrics.height() * size / measured;
    const double low = values.line.captionIsAbove ? (values.border ? values.border->lineWidth : 1) : -height / 2;
    label.box = QRectF(-width / 2 + captionPadding, low, width, height);
    double angle = std::atan2(way.y(), way.x()) * 180 / std::numbers::pi;
    if (std::abs(angle) > 90) // never upside down
        angle += 180;
    const QPointF middle = (run.start + run.end) / 2;
    label.toPage = QTransform().rotate(angle) * QTransform::fromTranslate(middle.x(), middle.y());
    return label;
}

QPainterPath DimensionLine::path(const Run& run, const PDFLineData& line,
                                 const std::optional<AnnotationDrawing::Label>& caption) {
    const QPointF way = run.end - run.start;
    const double length = std::hypot(way.x(), way.y());
    QPainterPath path(run.start);
    if (caption && !line.captionIsAbove && caption->box.width() < length) {
        const QPointF half = way / length * caption->box.width() / 2;
        path.lineTo((run.start + run.end) / 2 - half);
        path.moveTo((run.start + run.end) / 2 + half);
    }
    path.lineTo(run.end);
    return path;
}
