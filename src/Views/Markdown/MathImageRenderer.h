#pragma once

#include <QColor>
#include <QImage>
#include <QString>

#include <optional>

class MemoryPressureMonitor;

/// Formulas of replies as images, each drawn once and kept for the next time the reply is laid out. Main thread only.
namespace MathImageRenderer {

/// A formula on a transparent ground, cut to its ink and 3 points around.
struct RenderedFormula {
    QImage image;
    double descent = 0; ///< points of the image below the formula's baseline
};

/// Images that are kept, and the memory for their pixels; the one that was not asked for longest goes first.
inline constexpr int maximumCount = 500;
inline constexpr int maximumBytes = 64 << 20;

/// The formula, as models write it (FormulaDialect), in display style and Latin Modern Math. Its size in points is that
/// of a screen with one pixel to the point; a `devicePixelRatio` above 1 makes it sharper, not larger. None for a
/// source that is no formula or leaves no ink, which is tried again the next time. What lies outside of 2000 by 400
/// points is cut off.
[[nodiscard]] std::optional<RenderedFormula> render(const QString& latex, double fontSize, const QColor& color,
                                                    double devicePixelRatio = 1);

/// Kept images now.
[[nodiscard]] int count();
/// And the bytes of their pixels.
[[nodiscard]] qsizetype bytes();
void removeAll();

/// Forgets the images whenever memory runs short.
void install(MemoryPressureMonitor& monitor);

} // namespace MathImageRenderer
