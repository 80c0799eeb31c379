#pragma once

#include <QColor>
#include <QFont>

#include <optional>

/// How the text of a FreeText annotation or of a form field is set.
struct PDFTextStyle {
    std::optional<QFont> font; ///< size in points
    std::optional<QColor> color;
    bool sizeSuitsBox = false; ///< of a field: chosen so that the text fits, whatever `font` says
};
