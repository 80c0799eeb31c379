#include "LineEndStyle.h"

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
