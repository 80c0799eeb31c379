#include "ClusterText.h"

#include "DrawnText.h"
#include "EmbeddedFont.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

/// The glyphs of a page by where they are. They are drawn in nearly the order in which they were found.
class Finding {
public:
    explicit Finding(const GlyphPlaces::Page& page) : m_glyphs(page.glyphs), m_isFound(m_glyphs.size(), false) {
        std::stable_sort(m_glyphs.begin(), m_glyphs.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
    }

    /// The cluster of the glyph at that place; each glyph is found once.
    std::optional<quint32> take(QPointF place) {
        if (!isAt(m_next, place)) {
            const auto isBelow = [](const GlyphPlaces::Glyph& glyph, double y) { return double(glyph.y) < y; };
            const auto found = std::lower_bound(m_glyphs.begin(), m_glyphs.end(), place.y() - tolerance, isBelow);
            m_next = std::size_t(found - m_glyphs.begin());
            while (m_next < m_glyphs.size() && double(m_glyphs[m_next].y) < place.y() + tolerance &&
                   !isAt(m_next, place))
                ++m_next;
            if (!isAt(m_next, place))
                return std::nullopt;
        }
        m_isFound[m_next] = true;
        return m_glyphs[m_next++].cluster;
    }

private:
    static constexpr double tolerance = 0.06; ///< points

    [[nodiscard]] bool isAt(std::size_t index, QPointF place) const {
        return index < m_glyphs.size() && !m_isFound[index] &&
               std::abs(double(m_glyphs[index].x) - place.x()) < tolerance &&
               std::abs(double(m_glyphs[index].y) - place.y()) < tolerance;
    }

    std::vector<GlyphPlaces::Glyph> m_glyphs; ///< from the bottom to the top
    std::vector<bool> m_isFound;
    std::size_t m_next = 0;
};

class Telling : private DrawnText {
public:
    Telling(const QByteArray& instructions, const GlyphPlaces& places, const GlyphPlaces::Page& page,
            const ClusterText::Fonts& fonts)
        : DrawnText(instructions), m_places(places), m_page(page), m_fonts(fonts), m_finding(page),
          m_left(page.texts.size(), 0), m_started(page.texts.size(), 0) {
        for (const GlyphPlaces::Glyph& glyph : page.glyphs)
            ++m_left[glyph.cluster];
    }

    std::optional<QByteArray> run() {
        read();
        if (m_copied == 0)
            return std::nullopt;
        return m_told + bytes().mid(m_copied);
    }

private:
    void showGlyph(const Glyph& glyph) override {
        const std::optional<quint32> cluster = m_finding.take({glyph.toPage.dx(), glyph.toPage.dy()});
        if (cluster != m_cluster || (!m_glyphs.empty() && m_glyphs.front().font != glyph.font))
            endRun(glyph.toPage);
        m_cluster = cluster;
        if (cluster)
            m_glyphs.push_back(glyph);
    }

    void endText(qsizetype /*start*/, qsizetype /*end*/) override { endRun({}); }

    /// The glyphs of a cluster that one instruction draws behind the other: nearly always all of them. `next`: the
    /// glyph behind them, if there is one.
    void endRun(const std::optional<QTransform>& next) {
        if (EmbeddedFont* font = m_glyphs.empty() ? nullptr : fontOf(m_glyphs.front())) {
            int& left = m_left[*m_cluster];
            left -= int(m_glyphs.size());
            if ((left > 0 || m_started[*m_cluster] > 0) && m_glyphs.size() == 1 &&
                font->isBlank(codeOf(m_glyphs.front())))
                replace({}, 0, 0); // joins its neighbours in its own font; the character stays with the one before it
            else
                tell(*font, takeText(), next);
        }
        m_cluster.reset();
        m_glyphs.clear();
    }

    EmbeddedFont* fontOf(const Glyph& glyph) {
        if (glyph.font != m_fontName) {
            m_fontName = glyph.font.toByteArray();
            const auto found = m_fonts.find(m_fontName);
            m_font = found == m_fonts.end() ? nullptr : found->second;
        }
        return m_font;
    }

    /// What of the cluster's text is for these glyphs: the rest, or a character for each when others follow.
    QString takeText() {
        const QString& whole = m_places.text(m_page.texts[*m_cluster]);
        qsizetype& start = m_started[*m_cluster];
        if (start == 0 && m_left[*m_cluster] == 0)
            return whole;
        qsizetype end = m_left[*m_cluster] > 0 ? start : whole.size();
        for (std::size_t i = 0; i < m_glyphs.size() && end < whole.size(); ++i) {
            end += whole[end].isHighSurrogate() ? 2 : 1;
            while (end < whole.size() && whole[end].category() == QChar::Other_Format)
                ++end;
        }
        const QString text = whole.mid(start, end - start);
        start = end;
        return text.isEmpty() ? QString(QChar(zeroWidthSpace)) : text;
    }

    static int codeOf(const Glyph& glyph) { return glyph.code.sliced(1).chopped(1).toInt(nullptr, 16); }

    void tell(EmbeddedFont& font, const QString& text, const std::optional<QTransform>& next) {
        const QStringList letters = lettersOf(text);
        if (m_glyphs.size() == 1 && letters.size() == 1 && font.claim(codeOf(m_glyphs.front()), text))
            return;
        const QTransform toFirst = m_glyphs.front().toPage.inverted();
        const double size = m_glyphs.front().size;
        const auto placeOf = [&](const QTransform& toPage) {
            return toFirst.map(QPointF(toPage.dx(), toPage.dy())) / size;
        };
        std::vector<EmbeddedFont::Part> parts;
        double left = 0;
        double right = 0;
        for (const Glyph& glyph : m_glyphs) {
            const QPointF place = placeOf(glyph.toPage);
            parts.push_back({codeOf(glyph), place.x(), place.y()});
            left = std::min(left, place.x());
            right = std::max(right, place.x() + font.width(codeOf(glyph)));
        }
        for (EmbeddedFont::Part& part : parts)
            part.x -= left;
        constexpr double widestGap = 0.5; // within a word; readers would take it for a space
        if (next && placeOf(*next).x() > right && placeOf(*next).x() < right + widestGap)
            right = placeOf(*next).x();
        // Whoever goes by the places takes the letters in the same order as whoever goes by the order of drawing.
        const double width = (right - left) / double(letters.size());
        const double step = text.isRightToLeft() ? -width : width;
        std::vector<int> codes;
        for (const QString& letter : letters) {
            const bool isLeftmost = step < 0 ? codes.size() + 1 == std::size_t(letters.size()) : codes.empty();
            codes.push_back(font.joined(isLeftmost ? parts : std::vector<EmbeddedFont::Part>(), width, letter));
        }
        if (std::find(codes.begin(), codes.end(), -1) == codes.end())
            replace(codes, (step < 0 ? right + step : left) * size, step * size);
    }

    /// What needs a glyph of its own: readers turn the letters of one glyph around in text from right to left, and
    /// don't know several characters beyond the basic plane in one.
    static QStringList lettersOf(const QString& text) {
        const bool hasOthers = std::any_of(text.begin(), text.end(), [](QChar unit) { return unit.isSurrogate(); });
        if (!hasOthers && !text.isRightToLeft())
            return {text};
        QStringList letters;
        for (qsizetype i = 0; i < text.size(); i += letters.back().size())
            letters.append(text.mid(i, text[i].isHighSurrogate() ? 2 : 1));
        return letters;
    }

    /// Draws these glyphs instead of the run's, the first one at `start`, each `step` behind the other.
    void replace(const std::vector<int>& codes, double start, double step) {
        m_told += bytes().mid(m_copied, m_glyphs.front().start - m_copied);
        double moved = 0;
        const auto moveTo = [this, &moved](double place) {
            if (place != moved)
                m_told += QByteArray::number(place - moved, 'f', 4) + " 0 Td ";
            moved = place;
        };
        for (std::size_t i = 0; i < codes.size(); ++i) {
            moveTo(start + double(i) * step);
            m_told += '<' + QByteArray::number(codes[i], 16).rightJustified(4, '0') + "> Tj ";
        }
        moveTo(0);
        for (std::size_t i = 1; i < m_glyphs.size(); ++i) // what lies between the glyphs moves on
            m_told += bytes().mid(m_glyphs[i - 1].end, m_glyphs[i].start - m_glyphs[i - 1].end);
        m_copied = m_glyphs.back().end;
    }

    static constexpr char16_t zeroWidthSpace = 0x200B; // a glyph without any text would be told as an unknown one

    const GlyphPlaces& m_places;
    const GlyphPlaces::Page& m_page;
    const ClusterText::Fonts& m_fonts;
    QByteArray m_fontName; ///< of `m_font`
    EmbeddedFont* m_font = nullptr;
    Finding m_finding;
    std::vector<int> m_left;          ///< glyphs of each cluster that weren't drawn yet
    std::vector<qsizetype> m_started; ///< how much of its text they have
    QByteArray m_told;
    qsizetype m_copied = 0;           ///< up to where the bytes are in `m_told`
    std::optional<quint32> m_cluster; ///< of the last glyph
    std::vector<Glyph> m_glyphs;      ///< of that cluster
};

} // namespace

std::optional<QByteArray> ClusterText::told(const QByteArray& instructions, const GlyphPlaces& places,
                                            const GlyphPlaces::Page& page, const Fonts& fonts) {
    return Telling(instructions, places, page, fonts).run();
}
