#pragma once

#include <QLatin1String>

/// The resource names of the math fonts. In the bundle folder a font is the file of its name with ".otf", and its
/// property list the one with ".plist".
namespace MathFontNames {

inline constexpr QLatin1String latinModern{"latinmodern-math"};
inline constexpr QLatin1String kpMathLight{"KpMath-Light"};
inline constexpr QLatin1String kpMathSans{"KpMath-Sans"};
inline constexpr QLatin1String xits{"xits-math"};
inline constexpr QLatin1String termes{"texgyretermes-math"};
inline constexpr QLatin1String asana{"Asana-Math"};
inline constexpr QLatin1String euler{"Euler-Math"};
inline constexpr QLatin1String fira{"FiraMath-Regular"};
inline constexpr QLatin1String notoSans{"NotoSansMath-Regular"};
inline constexpr QLatin1String libertinus{"LibertinusMath-Regular"};
inline constexpr QLatin1String garamond{"Garamond-Math"};
inline constexpr QLatin1String leteSans{"LeteSansMath"};

} // namespace MathFontNames
