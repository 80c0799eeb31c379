#pragma once

#include "PageText.h"

#include <QByteArray>
#include <QFont>

/// The fonts that files name, as fonts of the desktop.
namespace PageFont {

/// The family that comes nearest to a font of a page, with its weight and slope: the installed one of that name, one
/// that the desktop has a substitute for, or else its serif, sans or monospaced one. `size` is in points. Needs the
/// application object.
[[nodiscard]] QFont nearest(const PageText::Font& font, double size);

/// The font that a default appearance (the DA key) names: one of the fourteen standard fonts, by its name or by the
/// short one that forms use for it ("HeBo"). Any other name is taken for a family's.
[[nodiscard]] QFont ofDefaultAppearance(const QString& name, double size);

/// The one of the twelve standard text fonts that comes nearest to a font: its PostScript name, "Times-Bold".
[[nodiscard]] QByteArray standardName(const QFont& font);

/// The short name that forms use for a standard text font, "TiBo".
[[nodiscard]] QByteArray shortName(const QByteArray& standardName);

} // namespace PageFont
