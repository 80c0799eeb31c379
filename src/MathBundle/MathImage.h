#pragma once

#include "MTMathImage.h"
#include "MathFont.h"

#include <QColor>
#include <QMarginsF>
#include <QSizeF>
#include <QString>

/// A formula as an image in one of the fonts that the program knows. Usable on any thread.
class MathImage {
public:
    using LayoutInfo = MTMathImageResult::LayoutInfo;

    MathFont font = MathFont::latinModernFont;
    double fontSize = 20; ///< in points
    QColor textColor{Qt::black};
    MTMathUILabelMode labelMode = MTMathUILabelMode::display;
    MTTextAlignment textAlignment = MTTextAlignment::center;
    QMarginsF contentInsets;
    QString latex;
    /// What the formula takes with its insets, in points; set by `asImage`.
    QSizeF intrinsicContentSize;

    /// As `MTMathImage::asImage`. Throws as `MTFontV2` for a font that is not installed.
    [[nodiscard]] MTMathImageResult asImage(double devicePixelRatio = 1);
};
