#include "FormulaTokens.h"

namespace {

using Kind = FormulaToken::Kind;

char32_t scalarAt(QStringView text, qsizetype position) {
    const QChar first = text[position];
    if (first.isHighSurrogate() && position + 1 < text.size() && text[position + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(first, text[position + 1]);
    return first.unicode();
}

qsizetype unitsOf(char32_t scalar) {
    return QChar::requiresSurrogates(scalar) ? 2 : 1;
}

bool isLetter(QChar character) {
    return (character >= u'a' && character <= u'z') || (character >= u'A' && character <= u'Z');
}

bool isMark(char32_t scalar) {
    return QChar::isMark(scalar) && !(scalar >= 0xFE00 && scalar <= 0xFE0F);
}

/// Joiners, invisible operators, marks of direction and selectors of a glyph: they show nothing by themselves.
bool isNeverSeen(char32_t scalar) {
    return QChar::category(scalar) == QChar::Other_Format || QChar::category(scalar) == QChar::Other_Control ||
           (scalar >= 0xFE00 && scalar <= 0xFE0F);
}

bool isBlank(QChar character) {
    return character == u' ' || character == u'\t' || character == u'\n' || character == u'\r';
}

Kind kindOf(QChar character) {
    switch (character.unicode()) {
    case u'{':
        return Kind::open;
    case u'}':
        return Kind::close;
    case u'^':
        return Kind::superscript;
    case u'_':
        return Kind::subscript;
    case u'&':
        return Kind::cell;
    case u'\\':
        return Kind::command;
    default:
        return isBlank(character) ? Kind::blank : Kind::character;
    }
}

/// Where the token that begins at `start` ends.
qsizetype endOf(QStringView source, qsizetype start, Kind kind) {
    qsizetype end = start + 1;
    const auto extend = [&](auto isMore) {
        while (end < source.size() && isMore(source[end]))
            ++end;
    };
    if (kind == Kind::blank) {
        extend(&isBlank);
    } else if (kind == Kind::command && end < source.size()) {
        if (isLetter(source[end]))
            extend(&isLetter);
        else
            end += unitsOf(scalarAt(source, end));
    } else if (kind == Kind::character) {
        end = start + unitsOf(scalarAt(source, start));
        while (end < source.size() && isMark(scalarAt(source, end)))
            end += unitsOf(scalarAt(source, end));
    }
    return end;
}

} // namespace

char32_t FormulaToken::character() const {
    return kind == Kind::character ? scalarAt(text, 0) : 0;
}

QStringView FormulaToken::marks() const {
    return text.sliced(unitsOf(character()));
}

FormulaTokens::FormulaTokens(QStringView source) {
    m_tokens.reserve(static_cast<std::size_t>(source.size()) + 1);
    for (qsizetype start = 0; start < source.size();) {
        const Kind kind = kindOf(source[start]);
        const qsizetype end = endOf(source, start, kind);
        const qsizetype textStart = kind == Kind::command ? start + 1 : start;
        if (kind != Kind::character || !isNeverSeen(scalarAt(source, start)))
            m_tokens.push_back({kind, source.sliced(textStart, end - textStart)});
        start = end;
    }
    m_tokens.push_back({});
}

const FormulaToken& FormulaTokens::peekBehind() const {
    std::size_t position = m_position;
    while (position + 1 < m_tokens.size() && (position == m_position || m_tokens[position].kind == Kind::blank))
        ++position;
    return m_tokens[position];
}

const FormulaToken& FormulaTokens::next() {
    const FormulaToken& token = m_tokens[m_position];
    if (m_position + 1 < m_tokens.size())
        ++m_position;
    return token;
}

void FormulaTokens::skipBlanks() {
    while (peek().kind == Kind::blank)
        next();
}
