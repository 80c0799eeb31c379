#include "LineEndStyle.h"

#include "QuilloAssert.h"

#include <algorithm>

std::span<const LineEndStyleInfo> allLineEndStyles() {
    static const LineEndStyleInfo styles[] = {
        {PDFLineStyle::none, u"Line"_qs},
        {PDFLineStyle::closedArrow, u"Arrow"_qs},
        {PDFLineStyle::openArrow, u"Open Arrow"_qs},
        {PDFLineStyle::circle, u"Circle"_qs},
        {PDFLineStyle::square, u"Square"_qs},
        {PDFLineStyle::diamond, u"Diamond"_qs},
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
