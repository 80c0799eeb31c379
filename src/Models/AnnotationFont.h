#pragma once

#include <QFont>
#include <QString>

#include <optional>
#include <span>

/// The font families that a text box can have.
enum class AnnotationFont { system, serif, mono, rounded, marker };

struct AnnotationFontInfo {
    AnnotationFont font;
    QString rawValue;
    QString title; ///< in the toolbar
};

/// Every choice once, in the order of the toolbar.
[[nodiscard]] std::span<const AnnotationFontInfo> allAnnotationFonts();
[[nodiscard]] const AnnotationFontInfo& info(AnnotationFont font);
[[nodiscard]] std::optional<AnnotationFont> annotationFontFromRawValue(QStringView rawValue);

/// The font to draw with; `size` is in points. A family that isn't installed gives the plain system font of that size
/// and weight. Needs the application object.
[[nodiscard]] QFont platformFont(AnnotationFont font, double size, QFont::Weight weight = QFont::Normal);
