#pragma once

#include <QLatin1String>

/// The resource names of the math fonts: their files in the bundle folder are the name with "otf" and "plist".
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
