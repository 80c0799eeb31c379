#pragma once

#include <QLatin1String>

/// The keys of a math font's property list. All numbers in it are in font units, percentages apart.
namespace MathTableKeys {

inline constexpr QLatin1String kVersion{"version"};
inline constexpr QLatin1String kConstants{"constants"};      ///< name to number
inline constexpr QLatin1String kVertVariants{"v_variants"};  ///< glyph name to array of glyph names
inline constexpr QLatin1String kHorizVariants{"h_variants"}; ///< likewise
inline constexpr QLatin1String kItalic{"italic"};            ///< glyph name to number
inline constexpr QLatin1String kAccents{"accents"};          ///< glyph name to number
inline constexpr QLatin1String kVertAssembly{"v_assembly"};  ///< glyph name to dictionary with `kAssemblyParts`
inline constexpr QLatin1String kAssemblyParts{"parts"};      ///< array of dictionaries with the keys below
inline constexpr QLatin1String kPartGlyph{"glyph"};          ///< glyph name
inline constexpr QLatin1String kPartAdvance{"advance"};      ///< number
inline constexpr QLatin1String kPartStart{"startConnector"}; ///< number
inline constexpr QLatin1String kPartEnd{"endConnector"};     ///< number
inline constexpr QLatin1String kPartExtender{"extender"};    ///< boolean

/// The one value of `kVersion` that is written and read.
inline constexpr QLatin1String supportedVersion{"1.3"};

} // namespace MathTableKeys
