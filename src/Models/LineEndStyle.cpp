#include "LineEndStyle.h"

#include "QuilloAssert.h"

#include <algorithm>

std::span<const LineEndStyleInfo> allLineEndStyles() {
    static const LineEndStyleInfo styles[] = {
        {PDFLineStyle::none, QStringLiteral("Line")},
        {PDFLineStyle::closedArrow, QStringLiteral("Arrow")},
        {PDFLineStyle::openArrow, QStringLiteral("Open Arrow")},
        {PDFLineStyle::circle, QStringLiteral("Circle")},
        {PDFLineStyle::square, QStringLiteral("Square")},
        {PDFLineStyle::diamond, QStringLiteral("Diamond")},
    };
    return styles;
}

const LineEndStyleInfo& info(PDFLineStyle style) {
    const auto styles = allLineEndStyles();
    const auto found =
        std::find_if(styles.begin(), styles.end(), [style](const LineEndStyleInfo& row) { return row.style == style; });
    QUILLO_ASSERT(found != styles.end(), "Every line end style is in the picker.");
    return *found;
}
