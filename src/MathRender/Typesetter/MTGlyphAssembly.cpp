#include "MTGlyphAssembly.h"

#include "GlyphPart.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The parts in order, extenders as often as wanted.
class Sequence {
public:
    /// What a number of extenders comes to.
    struct Measure {
        std::size_t count = 0;                                ///< of glyphs
        double minHeight = 0;                                 ///< with all joints overlapping as far as they can
        double maxDelta = std::numeric_limits<double>::max(); ///< how far every joint can be pulled apart from that
        double lastAdvance = 0;

        [[nodiscard]] double maxHeight() const {
            return count > 1 ? minHeight + maxDelta * static_cast<double>(count - 1) : minHeight;
        }
        [[nodiscard]] bool reaches(double height) const {
            return count > 0 && (minHeight >= height || height <= maxHeight());
        }
    };

    Sequence(std::span<const GlyphPart> parts, double minDistance) : m_parts(parts), m_minDistance(minDistance) {}

    [[nodiscard]] Measure measure(int numExtenders) const {
        return forEachGlyph(numExtenders, [](const GlyphPart&, double) {});
    }

    /// With every joint pulled apart by the same length.
    [[nodiscard]] MTGlyphAssembly build(int numExtenders, double height) const {
        MTGlyphAssembly assembly;
        const Measure measured = forEachGlyph(numExtenders, [&](const GlyphPart& part, double minOffset) {
            assembly.glyphs.push_back(part.glyph);
            assembly.offsets.push_back(static_cast<float>(minOffset));
        });
        assembly.height = measured.minHeight;
        const double wanted = std::min(height, measured.maxHeight());
        if (measured.count > 1 && measured.minHeight < wanted) {
            const auto deltaIncrease =
                static_cast<float>((wanted - measured.minHeight) / static_cast<double>(measured.count - 1));
            for (std::size_t i = 0; i < assembly.offsets.size(); ++i)
                assembly.offsets[i] += static_cast<float>(i) * deltaIncrease;
            assembly.height = static_cast<double>(assembly.offsets.back()) + measured.lastAdvance;
        }
        return assembly;
    }

private:
    /// Calls `visit` with each glyph's part and its lowest offset.
    template <typename Visit>
    Measure forEachGlyph(int numExtenders, Visit visit) const {
        Measure result;
        const GlyphPart* prev = nullptr;
        double minOffset = 0;
        for (const GlyphPart& part : m_parts) {
            const int repeats = part.isExtender ? numExtenders : 1;
            for (int i = 0; i < repeats; ++i) {
                if (prev) {
                    const double maxOverlap = std::min(prev->endConnectorLength, part.startConnectorLength);
                    const double minOffsetDelta = prev->fullAdvance - maxOverlap;
                    const double maxOffsetDelta = prev->fullAdvance - m_minDistance;
                    result.maxDelta = std::min(result.maxDelta, maxOffsetDelta - minOffsetDelta);
                    minOffset += minOffsetDelta;
                }
                visit(part, minOffset);
                ++result.count;
                prev = &part;
            }
        }
        if (prev) {
            result.lastAdvance = prev->fullAdvance;
            result.minHeight = minOffset + prev->fullAdvance;
        }
        return result;
    }

    std::span<const GlyphPart> m_parts;
    double m_minDistance;
};

/// The number of steps of `growth` from `start` to `height`; none when they never get there.
double stepsTo(double height, double start, double growth) {
    return growth > 0 ? std::ceil((height - start) / growth) : std::numeric_limits<double>::infinity();
}

/// From two extenders on, all kinds of joints are there, and each further one adds the same to the heights.
constexpr int steadyFrom = 2;

/// Far beyond any formula; for fonts whose extenders add next to nothing.
constexpr double mostExtenders = 1e6;

} // namespace

MTGlyphAssembly MTGlyphAssembly::constructGlyphWithParts(std::span<const GlyphPart> parts, double glyphHeight,
                                                         double minDistance) {
    if (parts.empty())
        return {};
    const Sequence sequence(parts, minDistance);
    int numExtenders = 0;
    for (; numExtenders <= steadyFrom + 1; ++numExtenders) {
        if (sequence.measure(numExtenders).reaches(glyphHeight))
            return sequence.build(numExtenders, glyphHeight);
    }

    // The rest of the count at one go: a delimiter around thousands of rows has thousands of extenders.
    const auto first = sequence.measure(steadyFrom);
    const auto second = sequence.measure(steadyFrom + 1);
    const double steps = std::min(stepsTo(glyphHeight, second.minHeight, second.minHeight - first.minHeight),
                                  stepsTo(glyphHeight, second.maxHeight(), second.maxHeight() - first.maxHeight()));
    if (steps > mostExtenders)
        return sequence.build(1, std::numeric_limits<double>::max());
    // Rounding may have put it off by one.
    numExtenders = std::max(numExtenders, steadyFrom + static_cast<int>(steps));
    while (!sequence.measure(numExtenders).reaches(glyphHeight))
        ++numExtenders;
    return sequence.build(numExtenders, glyphHeight);
}
