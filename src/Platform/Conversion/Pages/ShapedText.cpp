#include "ShapedText.h"

#include "LetterPages.h"

#include <QGlyphRun>
#include <QList>
#include <QTextLayout>
#include <QTextLine>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// Whether fonts have a glyph for this character that they use for nothing else.
bool isPlain(QChar character) {
    constexpr char16_t firstMark = 0x300;
    if (character.unicode() < firstMark)
        return true;
    constexpr char16_t firstPartOfHangul = 0x1100;
    constexpr char16_t lastPartOfHangul = 0x11FF;
    constexpr char16_t unbreakableHyphen = 0x2011; // drawn as the other one
    if (character == QChar(unbreakableHyphen) || character.isSurrogate() || character.isMark() ||
        character.category() == QChar::Other_Format ||
        (character.unicode() >= firstPartOfHangul && character.unicode() <= lastPartOfHangul))
        return false;
    switch (character.script()) {
    case QChar::Script_Common:
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
    case QChar::Script_Armenian:
    case QChar::Script_Georgian:
    case QChar::Script_Hebrew:
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Bopomofo:
    case QChar::Script_Hangul:
        return true;
    default:
        return false;
    }
}

using Drawn = std::pair<QPointF, quint32>; ///< a glyph of some font

std::vector<Drawn> glyphsOf(const QTextLine& line, qsizetype from, qsizetype length) {
    std::vector<Drawn> glyphs;
    for (const QGlyphRun& run : line.glyphRuns(int(from), int(length))) {
        const QList<quint32> numbers = run.glyphIndexes();
        const QList<QPointF> places = run.positions();
        for (qsizetype i = 0; i < std::min(numbers.size(), places.size()); ++i)
            glyphs.emplace_back(places[i], numbers[i]);
    }
    return glyphs;
}

bool hasLigature(const QTextLine& line) {
    qsizetype glyphs = 0;
    for (const QGlyphRun& run : line.glyphRuns())
        glyphs += run.glyphIndexes().size();
    return glyphs < line.textLength();
}

bool isOf(const std::vector<Drawn>& word, const std::vector<quint32>& numbers) {
    return std::equal(word.begin(), word.end(), numbers.begin(), numbers.end(),
                      [](const Drawn& glyph, quint32 number) { return glyph.second == number; });
}

} // namespace

/// The characters that a cursor can stand between, together where they share a glyph.
ShapedText::Word ShapedText::divided(const QTextLayout& layout, const QTextLine& line, qsizetype from, qsizetype to) {
    const std::vector<Drawn> all = glyphsOf(line, from, to - from);
    Word word;
    for (const Drawn& glyph : all)
        word.glyphs.push_back(glyph.second);
    std::vector<bool> isTaken(all.size(), false);
    while (from < to) {
        const qsizetype next = std::clamp<qsizetype>(layout.nextCursorPosition(int(from)), from + 1, to);
        std::vector<std::size_t> added;
        bool isShared = false;
        for (const Drawn& glyph : glyphsOf(line, from, next - from)) {
            const auto index = std::size_t(std::find(all.begin(), all.end(), glyph) - all.begin());
            isShared = isShared || (index < all.size() && isTaken[index]);
            if (index < all.size() && !isTaken[index])
                added.push_back(index);
        }
        if (word.clusters.empty() || (!added.empty() && !isShared))
            word.clusters.emplace_back();
        Cluster& cluster = word.clusters.back();
        cluster.length += next - from;
        for (const std::size_t index : added) {
            cluster.glyphs.push_back(index);
            isTaken[index] = true;
        }
        from = next;
    }
    return word;
}

void ShapedText::add(const QTextLayout& layout, const QTextLine& line, QStringView text, const Place& place) {
    constexpr qsizetype mostWords = 20'000;
    const qsizetype end = std::min<qsizetype>(line.textStart() + line.textLength(), text.size());
    const bool isJoined = m_mayJoin && hasLigature(line);
    std::vector<QPointF> places;
    for (qsizetype from = line.textStart(), to = from; from < end; from = to + 1) {
        bool isTold = !isJoined;
        for (to = from; to < end && !text[to].isSpace(); ++to)
            isTold = isTold && isPlain(text[to]);
        if (isTold || from == to)
            continue;
        const std::vector<Drawn> glyphs = glyphsOf(line, from, to - from);
        const QString letters = text.mid(from, to - from).toString();
        if (m_words.size() > mostWords)
            m_words.clear();
        Word& word = m_words[letters];
        if (!isOf(glyphs, word.glyphs) || word.clusters.empty())
            word = divided(layout, line, from, to);
        qsizetype start = 0;
        for (const Cluster& cluster : word.clusters) {
            places.clear();
            for (const std::size_t index : cluster.glyphs)
                places.push_back(LetterPages::inPoints((place.origin + glyphs[index].first) * place.scale));
            QString told = letters.mid(start, cluster.length);
            if (told.size() > 1) // what isn't drawn has come to the letter in front of it
                told.remove(QChar(QChar::SoftHyphen)).remove(QChar(QChar::ObjectReplacementCharacter));
            if (!places.empty() && !told.isEmpty())
                m_pages.addGlyphs(place.page, told, places);
            start += cluster.length;
        }
    }
}
