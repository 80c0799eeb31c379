#pragma once

#include "GlyphPlaces.h"

#include <QByteArray>

#include <map>
#include <optional>

class EmbeddedFont;

/// The text of clusters of glyphs in the drawing instructions of pages.
namespace ClusterText {

/// The fonts that a page names, by the name with its slash.
using Fonts = std::map<QByteArray, EmbeddedFont*>;

/// The instructions with glyphs that tell the text of each cluster; none when the fonts told all of it already. A glyph
/// without a text gets that of its cluster if it is alone in it. All others are drawn by one glyph that is added to the
/// font, made of them. Readers know no order but that of the glyphs, from the left: where several letters from right to
/// left share a glyph, glyphs that show nothing stand for the others.
[[nodiscard]] std::optional<QByteArray> told(const QByteArray& instructions, const GlyphPlaces& places,
                                             const GlyphPlaces::Page& page, const Fonts& fonts);

} // namespace ClusterText
