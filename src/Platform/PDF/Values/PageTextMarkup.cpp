// The part of PageText that marks lines.

#include "PageText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>

namespace {

/// How far a point lies along a direction.
constexpr auto reachAlong = QPointF::dotProduct;

/// To the left of the line's writing direction.
QPointF upOf(const PageText::Line& line) {
    return {-line.direction.y(), line.direction.x()};
}

/// From where to where a line reaches along its direction.
std::pair<double, double> extentAlong(const PageText& text, const PageText::Line& line) {
    if (line.start >= line.end)
        return {0, 0};
    const PDFQuad& first = text.glyphs[std::size_t(line.start)].quad;
    const PDFQuad& last = text.glyphs[std::size_t(line.end) - 1].quad;
    return std::minmax({reachAlong(first.lowerLeft, line.direction), reachAlong(first.lowerRight, line.direction),
                        reachAlong(last.lowerLeft, line.direction), reachAlong(last.lowerRight, line.direction)});
}

} // namespace

void PageText::measureHeight(Line& line) const {
    struct Voice {
        int letters = 0;
        double low = std::numeric_limits<double>::max();
        double high = std::numeric_limits<double>::lowest();
    };
    // Letters of one font and size on one baseline belong together; a tenth of the size doesn't make another baseline.
    std::map<std::tuple<std::uint16_t, long, long>, Voice> voices;
    const QPointF up = upOf(line);
    const Voice* own = nullptr;
    decltype(voices)::iterator last = voices.end(); // most glyphs are of the voice of the one before
    for (int at = line.start; at < line.end; ++at) {
        const Glyph& glyph = glyphs[std::size_t(at)];
        const double step = std::max(0.1 * double(glyph.size), 0.01);
        const decltype(voices)::key_type key{glyph.font, std::lround(100 * double(glyph.size)),
                                             std::lround(reachAlong(glyph.origin, up) / step)};
        if (last == voices.end() || last->first != key)
            last = voices.try_emplace(key).first;
        Voice& voice = last->second;
        for (const QPointF& corner :
             {glyph.quad.lowerLeft, glyph.quad.lowerRight, glyph.quad.upperLeft, glyph.quad.upperRight}) {
            voice.low =
                std::min(voice.low, reachAlong(corner, up)); // the upper ones are the lower ones in mirrored text
            voice.high = std::max(voice.high, reachAlong(corner, up));
        }
        voice.letters += string.at(at).isSpace() ? 0 : 1;
        if (!own || voice.letters > own->letters)
            own = &voice;
    }
    if (!own)
        return;
    line.low = own->low;
    line.high = own->high;
}

/// The height of a line less half of what it shares with the lines above and below.
std::pair<double, double> PageText::ownHeight(std::size_t index) const {
    const Line& line = lines[index];
    double low = line.low;
    double high = line.high;
    const auto [from, to] = extentAlong(*this, line);
    constexpr std::size_t reach = 64; // lines, in reading order: more than a table has cells beside each other
    const std::size_t last = std::min(lines.size(), index + reach);
    for (std::size_t i = index - std::min(index, reach); i < last; ++i) {
        const Line& other = lines[i];
        const double shared = std::min(line.high, other.high) - std::max(line.low, other.low);
        const double least = std::min(line.high - line.low, other.high - other.low);
        constexpr double mostShared = 0.5; // of the lower one: what shares more stands beside the line or in it
        if (i == index || shared <= 0 || shared > mostShared * least ||
            QPointF::dotProduct(line.direction, other.direction) < 0.999)
            continue;
        const auto [otherFrom, otherTo] = extentAlong(*this, other);
        if (otherTo <= from || otherFrom >= to)
            continue;
        if (other.low > line.low)
            high = std::min(high, line.high - shared / 2);
        else
            low = std::max(low, line.low + shared / 2);
    }
    return {low, high};
}

std::vector<PDFQuad> PageText::lineQuads(int start, int end) const {
    std::vector<PDFQuad> quads;
    for (int i = std::max(0, lineAt(start)); i < int(lines.size()) && lines[std::size_t(i)].start < end; ++i) {
        const Line& line = lines[std::size_t(i)];
        const QPointF up = upOf(line);
        double from = std::numeric_limits<double>::max();
        double to = std::numeric_limits<double>::lowest();
        for (int at = std::max(start, line.start); at < std::min(end, line.end); ++at) {
            const PDFQuad& quad = glyphs[std::size_t(at)].quad;
            for (const QPointF& corner : {quad.upperLeft, quad.upperRight, quad.lowerLeft, quad.lowerRight}) {
                from = std::min(from, reachAlong(corner, line.direction));
                to = std::max(to, reachAlong(corner, line.direction));
            }
        }
        const auto [low, high] = ownHeight(std::size_t(i));
        if (from >= to || low >= high)
            continue;
        const auto back = [&](double x, double y) { return x * line.direction + y * up; };
        quads.push_back({back(from, high), back(to, high), back(from, low), back(to, low)});
    }
    return quads;
}
