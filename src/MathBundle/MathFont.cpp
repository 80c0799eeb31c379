#include "MathFont.h"

#include "MathFontNames.h"

static constexpr std::array names{
    MathFontNames::latinModern, MathFontNames::kpMathLight, MathFontNames::kpMathSans, MathFontNames::xits,
    MathFontNames::termes,      MathFontNames::asana,       MathFontNames::euler,      MathFontNames::fira,
    MathFontNames::notoSans,    MathFontNames::libertinus,  MathFontNames::garamond,   MathFontNames::leteSans,
};
static_assert(names.size() == allMathFonts.size());

QString fontName(MathFont font) {
    return names[static_cast<std::size_t>(font)];
}
