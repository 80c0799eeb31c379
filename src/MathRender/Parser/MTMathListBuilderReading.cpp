// The parts of a source that stand for no atom: names, colours, delimiters, blanks.

#include "MTMathAtom.h"
#include "MTMathAtomFactory.h"
#include "MTMathListBuilder.h"

#include <QStringBuilder>

namespace {

/// The commands of one character that is not a letter.
constexpr QStringView singleCharacterCommands = u"{}$#%_| ,>;!\\";

/// Whether a character is one of ASCII's from "!" to "~". All others count as blanks in a formula.
bool isVisibleAscii(QStringView character) {
    return character.size() == 1 && character.front() >= u'!' && character.front() <= u'~';
}

bool isCasedLetter(QStringView character) {
    const char32_t first = character.size() > 1 && character[0].isHighSurrogate() && character[1].isLowSurrogate()
                               ? QChar::surrogateToUcs4(character[0], character[1])
                               : character.front().unicode();
    return QChar::isLower(first) || QChar::isUpper(first);
}

bool isColorCharacter(QStringView character) {
    if (character.size() != 1)
        return false;
    const char16_t c = character.front().unicode();
    return c == u'#' || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9');
}

} // namespace

void MTMathListBuilder::skipSpaces() {
    while (m_reader.hasCharacters()) {
        if (isVisibleAscii(m_reader.next())) {
            m_reader.stepBack();
            return;
        }
    }
}

bool MTMathListBuilder::expectCharacter(char16_t character) {
    skipSpaces();
    if (!m_reader.hasCharacters())
        return false;
    const QStringView next = m_reader.next();
    if (next.size() == 1 && next.front() == character)
        return true;
    m_reader.stepBack();
    return false;
}

QStringView MTMathListBuilder::readCommand() {
    if (m_reader.hasCharacters()) {
        const QStringView character = m_reader.next();
        if (character.size() == 1 && singleCharacterCommands.contains(character.front()))
            return character;
        m_reader.stepBack();
    }
    return readString();
}

QStringView MTMathListBuilder::readString() {
    return readWhile(&isCasedLetter);
}

QStringView MTMathListBuilder::readWhile(bool (*isWanted)(QStringView)) {
    const qsizetype start = m_reader.index();
    while (m_reader.hasCharacters()) {
        if (!isWanted(m_reader.next())) {
            m_reader.stepBack();
            break;
        }
    }
    return m_reader.text().sliced(start, m_reader.index() - start);
}

std::optional<QStringView> MTMathListBuilder::readBraced(QStringView (MTMathListBuilder::*readContent)()) {
    if (!expectCharacter(u'{')) {
        setError(MTParseErrors::characterNotFound, QStringLiteral("Missing {"));
        return std::nullopt;
    }
    skipSpaces();
    const QStringView content = (this->*readContent)();
    if (!expectCharacter(u'}')) {
        setError(MTParseErrors::characterNotFound, QStringLiteral("Missing }"));
        return std::nullopt;
    }
    return content;
}

std::optional<QStringView> MTMathListBuilder::readEnvironment() {
    return readBraced(&MTMathListBuilder::readString);
}

std::optional<QStringView> MTMathListBuilder::readColor() {
    return readBraced(&MTMathListBuilder::readColorString);
}

QStringView MTMathListBuilder::readColorString() {
    return readWhile(&isColorCharacter);
}

std::optional<QStringView> MTMathListBuilder::readDelimiter() {
    skipSpaces();
    if (!m_reader.hasCharacters())
        return std::nullopt;
    const QStringView character = m_reader.next();
    if (character != u'\\')
        return character;
    const QStringView command = readCommand();
    return command == u'|' ? QStringView(u"||") : command;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::getBoundaryAtom(QStringView side) {
    const std::optional<QStringView> delimiter = readDelimiter();
    if (!delimiter) {
        setError(MTParseErrors::missingDelimiter, QLatin1String("Missing delimiter for \\") % side);
        return nullptr;
    }
    AtomPointer boundary = MTMathAtomFactory::boundaryForDelimiter(*delimiter);
    if (!boundary) {
        setError(MTParseErrors::invalidDelimiter,
                 QLatin1String("Invalid delimiter for ") % side % QLatin1String(": ") % *delimiter);
    }
    return boundary;
}
