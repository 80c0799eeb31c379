#pragma once

#include <QString>

#include <array>
#include <cstdint>

/// The math fonts that the program knows. Which of them are installed shows when one is asked for: only Latin Modern
/// Math always is.
enum class MathFont : std::uint8_t {
    latinModernFont,
    kpMathLightFont,
    kpMathSansFont,
    xitsFont,
    termesFont,
    asanaFont,
    eulerFont,
    firaFont,
    notoSansFont,
    libertinusFont,
    garamondFont,
    leteSansFont,
};

inline constexpr std::array allMathFonts{
    MathFont::latinModernFont, MathFont::kpMathLightFont, MathFont::kpMathSansFont, MathFont::xitsFont,
    MathFont::termesFont,      MathFont::asanaFont,       MathFont::eulerFont,      MathFont::firaFont,
    MathFont::notoSansFont,    MathFont::libertinusFont,  MathFont::garamondFont,   MathFont::leteSansFont,
};

/// The font's name and at the same time that of its files, such as "latinmodern-math".
[[nodiscard]] QString fontName(MathFont font);
