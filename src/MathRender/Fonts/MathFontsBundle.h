#pragma once

#include <QString>

/// Where the font files and property lists are. The build makes the folder "mathFonts.bundle".
namespace MathFontsBundle {

/// The folder that belongs to the running program, absolute. Found once for the process.
[[nodiscard]] const QString& folder();

/// The folder for a program whose executable is in `programFolder`, the first that exists of:
/// 1. `../share/quillo/mathFonts.bundle`: installed, the executable in `bin`;
/// 2. `../mathFonts.bundle`, `../../mathFonts.bundle` and `../../../mathFonts.bundle`: run from the build tree, which
/// has
///    the bundle at its root.
/// When there is none, the first of these, so that errors name where it should be.
[[nodiscard]] QString folderFor(const QString& programFolder);

/// The path of a font's file in `bundleFolder`, by the font's resource name. Whether it exists is not looked at.
[[nodiscard]] QString fontPath(const QString& bundleFolder, const QString& fontName);
[[nodiscard]] QString propertyListPath(const QString& bundleFolder, const QString& fontName);

} // namespace MathFontsBundle
