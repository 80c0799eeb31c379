#include "MathImageRenderer.h"

#include "FormulaDialect.h"
#include "FormulaImageCache.h"
#include "Logging.h"
#include "MTContentLayout.h"
#include "MTFont.h"
#include "MTFontManager.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTMathListDisplay.h"
#include "MTTypesetter.h"
#include "MemoryPressureMonitor.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>

namespace {

using MathImageRenderer::RenderedFormula;

constexpr QSize canvas{2000, 400}; // points; a formula is set at its left, in the middle of its height
constexpr int leastInkAlpha = 11;
constexpr int margin = 3;

FormulaImageCache& cache() {
    static FormulaImageCache images(MathImageRenderer::maximumCount, MathImageRenderer::maximumBytes);
    return images;
}

/// What of the canvas may have ink: the box of the formula and what letters reach beyond theirs.
QRect reachOf(const MTMathListDisplay& display, double fontSize) {
    const double overhang = fontSize / 2 + margin + 1;
    const QPointF position = display.position();
    const double baseline = canvas.height() - position.y();
    const QRectF box(position.x() - overhang, baseline - display.ascent() - overhang, display.width() + 2 * overhang,
                     display.ascent() + display.descent() + 2 * overhang);
    // First in floating point: the box of a monstrous formula doesn't fit into whole numbers.
    return (box & QRectF(QPointF(), canvas)).toAlignedRect() & QRect(QPoint(), canvas);
}

/// The part `rect` (points) of the canvas.
QImage drawn(const MTMathListDisplay& display, const QRect& rect, double devicePixelRatio) {
    QImage image((QSizeF(rect.size()) * devicePixelRatio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-rect.left(), canvas.height() - rect.top());
    painter.scale(1, -1);
    display.draw(painter);
    return image;
}

/// The rows and columns with ink; empty without any.
QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        const auto* end = line + image.width();
        const auto isInk = [](QRgb pixel) { return qAlpha(pixel) >= leastInkAlpha; };
        const auto* first = std::find_if(line, end, isInk);
        if (first == end)
            continue;
        const auto* last =
            std::find_if(std::make_reverse_iterator(end), std::make_reverse_iterator(first), isInk).base();
        ink |= QRect(int(first - line), y, int(last - first), 1);
    }
    return ink;
}

/// Null when the font isn't installed: replies show the source then.
std::shared_ptr<const MTFont> fontOfSize(double fontSize) {
    try {
        return MTFontManager::fontManager().latinModernFont(fontSize);
    } catch (const std::exception& error) {
        qCWarning(Logging::math) << "a formula is shown as its source, for want of a font:" << Logging::causes(error);
        return nullptr;
    }
}

std::optional<RenderedFormula> renderUncached(const QString& latex, double fontSize, const QColor& color,
                                              double devicePixelRatio) {
    const std::optional<QString> formula = FormulaDialect::rewritten(latex);
    const auto list = formula ? MTMathListBuilder::build(*formula) : nullptr;
    const auto font = list ? fontOfSize(fontSize) : nullptr;
    if (!font)
        return std::nullopt;
    const MTContentLayout layout;
    const auto display = MTTypesetter::createLineForMathList(*list, font, layout.style());
    display->setTextColor(color);
    display->setPosition(layout.positionOf(*display, canvas, fontSize));

    const QRect reach = reachOf(*display, fontSize);
    if (reach.isEmpty())
        return std::nullopt;
    QImage image = drawn(*display, reach, 1);
    const QRect ink = inkOf(image);
    if (ink.isEmpty())
        return std::nullopt;
    const QRect cut =
        ink.translated(reach.topLeft()).adjusted(-margin, -margin, margin, margin) & QRect(QPoint(), canvas);
    image =
        devicePixelRatio == 1 ? image.copy(cut.translated(-reach.topLeft())) : drawn(*display, cut, devicePixelRatio);
    if (image.isNull())
        return std::nullopt;
    return RenderedFormula{image, cut.top() + cut.height() - (canvas.height() - display->position().y())};
}

} // namespace

std::optional<RenderedFormula> MathImageRenderer::render(const QString& latex, double fontSize, const QColor& color,
                                                         double devicePixelRatio) {
    const FormulaImageCache::Key key{latex, fontSize, color.rgba64(), devicePixelRatio};
    if (std::optional<RenderedFormula> kept = cache().find(key))
        return kept;
    std::optional<RenderedFormula> image = renderUncached(latex, fontSize, color, devicePixelRatio);
    if (image)
        cache().insert(key, *image);
    return image;
}

int MathImageRenderer::count() {
    return int(cache().count());
}

qsizetype MathImageRenderer::bytes() {
    return cache().bytes();
}

void MathImageRenderer::removeAll() {
    cache().clear();
}

void MathImageRenderer::install(MemoryPressureMonitor& monitor) {
    monitor.addHandler([] { removeAll(); });
}
