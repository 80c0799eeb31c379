#pragma once

#include "MTContentLayout.h"
#include "MTParseError.h"

#include <QColor>
#include <QImage>
#include <QMarginsF>
#include <QSizeF>
#include <QString>

#include <memory>
#include <optional>

class MTFont;

/// What became of a formula that was to be an image. A formula that can't be read has an error and nothing else. One
/// that is empty, or beyond what an image can hold, has no image and no error.
struct MTMathImageResult {
    /// How far the formula reaches above and below its baseline, in points.
    struct LayoutInfo {
        double ascent;
        double descent;
    };

    std::optional<MTParseError> error;
    std::optional<QImage> image;
    std::optional<LayoutInfo> layoutInfo;
};

/// A formula as an image, straight from its source. Usable on any thread.
class MTMathImage {
public:
    /// The most pixels along a side and in all: 256 MB.
    static constexpr int mostPixelsOfSide = 32'767;
    static constexpr double mostPixels = 64.0 * 1024 * 1024;

    std::shared_ptr<const MTFont> font; ///< at any size
    double fontSize = 20;               ///< in points
    QColor textColor{Qt::black};
    MTMathUILabelMode labelMode = MTMathUILabelMode::display;
    MTTextAlignment textAlignment = MTTextAlignment::center;
    QMarginsF contentInsets;
    QString latex;
    /// What the formula takes with its insets, in points; set by `asImage`.
    QSizeF intrinsicContentSize;

    /// The formula on a transparent ground, as large as `intrinsicContentSize` rounded up to whole points, with
    /// `devicePixelRatio` pixels to the point.
    [[nodiscard]] MTMathImageResult asImage(double devicePixelRatio = 1);
};
