#pragma once

#include <QString>

/// Where the font files and property lists are. The build makes the folder "mathFonts.bundle".
namespace MathFontsBundle {

/// The folder that belongs to the running program, absolute. Found once for the process.
[[nodiscard]] const QString& folder();

/// The folder for a program whose executable is in `programFolder`: `../share/quillo/mathFonts.bundle` of an installed
/// program, or else `mathFonts.bundle` one, two or three folders up, as the build tree has it at its root. When none of
/// them exists, the first, so that errors name where it should be.
[[nodiscard]] QString folderFor(const QString& programFolder);

/// The path of a font's file in `bundleFolder`, by the font's resource name. Whether it exists is not looked at.
[[nodiscard]] QString fontPath(const QString& bundleFolder, const QString& fontName);
[[nodiscard]] QString propertyListPath(const QString& bundleFolder, const QString& fontName);

} // namespace MathFontsBundle
