#pragma once

#include <QByteArray>

#include <vector>

/// What the engine knows by heart of fonts and their encodings. Any thread.
namespace FontTables {

enum class Encoding { standard, winAnsi, macRoman };

/// The characters of an encoding by code, 256; zero where it has none.
[[nodiscard]] std::vector<char32_t> characters(Encoding encoding);

/// The character that a glyph's name means ("eacute", "uni00E9"), without the slash; zero for an unknown name.
[[nodiscard]] char32_t character(const QByteArray& glyph);

/// Advance widths in thousandths of the font size in one of the twelve standard text fonts ("Times-Bold"); zero for a
/// character that it lacks.
[[nodiscard]] std::vector<double> widths(const QByteArray& standardFont, const std::vector<char32_t>& characters);

} // namespace FontTables
