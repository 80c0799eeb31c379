#include "MTMathListBuilder.h"

#include "MTMathAtom.h"
#include "MTMathAtomFactory.h"
#include "MTMathList.h"
#include "MTMathListWriter.h"

#include <utility>

namespace {

/// What can't be told from the characters of the syntax by its first unit.
constexpr char16_t otherCharacter = u'\uFFFF';

} // namespace

MTMathListBuilder::ListPointer MTMathListBuilder::build(QStringView source) {
    std::optional<MTParseError> error;
    return build(source, error);
}

MTMathListBuilder::ListPointer MTMathListBuilder::build(QStringView source, std::optional<MTParseError>& error) {
    MTMathListBuilder builder(source);
    ListPointer list = builder.buildInternal(false);
    if (builder.m_reader.hasCharacters()) {
        builder.setError(MTParseErrors::mismatchBraces, QLatin1String("Mismatched braces: ") + source.toString());
    }
    error = std::move(builder.m_error);
    return error ? nullptr : list;
}

QString MTMathListBuilder::mathListToString(const std::shared_ptr<MTMathList>& list) {
    return list ? list->string() : QString();
}

QString MTMathListBuilder::delimToString(const MTMathAtom& delim) {
    return MTMathListWriter::delimiterString(delim);
}

void MTMathListBuilder::setError(MTParseErrors code, const QString& message) {
    if (!m_error)
        m_error = MTParseError{code, message};
}

void MTMathListBuilder::setInternalError() {
    setError(MTParseErrors::internalError, QStringLiteral("Internal error"));
}

bool MTMathListBuilder::countPart() {
    if (++m_parts <= maximumParts)
        return true;
    setInternalError();
    return false;
}

MTMathListBuilder::ListPointer MTMathListBuilder::buildInternal(bool oneCharOnly, char16_t stopChar) {
    const NestingLevel level(*this);
    if (!level.isAllowed() || !countPart())
        return nullptr;
    auto list = std::make_shared<MTMathList>();
    MTMathAtom* prevAtom = nullptr;
    while (m_reader.hasCharacters()) {
        if (m_error)
            return nullptr;
        const QStringView character = m_reader.next();
        const char16_t c = character.size() == 1 ? character.front().unicode() : otherCharacter;
        if (oneCharOnly && (c == u'^' || c == u'}' || c == u'_' || c == u'&')) {
            m_reader.stepBack();
            return list;
        }
        if (stopChar != 0 && c == stopChar)
            return list;
        switch (c) {
        case u'^':
            buildScript(Script::super, *list, prevAtom);
            break;
        case u'_':
            buildScript(Script::sub, *list, prevAtom);
            break;
        case u'{':
            if (ListPointer group = buildInternal(false, u'}')) {
                if (oneCharOnly)
                    return group;
                appendGroup(group, *list, prevAtom);
            }
            break;
        case u'}':
            setError(MTParseErrors::mismatchBraces, QStringLiteral("Mismatched braces."));
            return nullptr;
        case u'\\':
            if (ListPointer finished = buildCommand(list, prevAtom, oneCharOnly, stopChar))
                return finished;
            break;
        case u'&':
            return m_currentEnv ? list : buildPlainTable(list, false);
        default:
            if (buildCharacter(character, *list, prevAtom) && oneCharOnly)
                return list;
            break;
        }
    }
    if (stopChar == u'}')
        setError(MTParseErrors::mismatchBraces, QStringLiteral("Missing closing brace"));
    else if (stopChar != 0)
        setError(MTParseErrors::characterNotFound, QLatin1String("Expected character not found: ") + QChar(stopChar));
    return list;
}

void MTMathListBuilder::buildScript(Script script, MTMathList& list, MTMathAtom*& prevAtom) {
    const bool isSuper = script == Script::super;
    if (!prevAtom || !prevAtom->scriptsAllowed() || (isSuper ? prevAtom->superScript() : prevAtom->subScript())) {
        if (!addAtom(std::make_shared<MTMathAtom>(MTMathAtomType::ordinary), list, prevAtom))
            return;
    }
    if (isSuper)
        prevAtom->setSuperScript(buildArgument());
    else
        prevAtom->setSubScript(buildArgument());
}

void MTMathListBuilder::appendGroup(const ListPointer& group, MTMathList& list, MTMathAtom*& prevAtom) {
    prevAtom = group->isEmpty() ? nullptr : group->atoms().back().get();
    list.append(group);
}

bool MTMathListBuilder::buildCharacter(QStringView character, MTMathList& list, MTMathAtom*& prevAtom) {
    const bool isSpace = m_spacesAllowed && character == u' ';
    AtomPointer atom =
        isSpace ? MTMathAtomFactory::atomForLatexSymbol(character) : MTMathAtomFactory::atomForCharacter(character);
    if (!atom)
        return false;
    atom->fontStyle = m_currentFontStyle;
    return addAtom(std::move(atom), list, prevAtom);
}

bool MTMathListBuilder::addAtom(AtomPointer atom, MTMathList& list, MTMathAtom*& prevAtom) {
    if (!countPart())
        return false;
    prevAtom = atom.get();
    list.add(std::move(atom));
    return true;
}

MTMathListBuilder::ListPointer MTMathListBuilder::buildCommand(const ListPointer& list, MTMathAtom*& prevAtom,
                                                               bool oneCharOnly, char16_t stopChar) {
    const QStringView command = readCommand();
    if (ListPointer finished = stopCommand(command, list, stopChar))
        return finished;
    if (m_error || applyModifier(command, prevAtom))
        return nullptr;
    if (const std::optional<MTFontStyle> style = MTMathAtomFactory::fontStyleWithName(command)) {
        ListPointer group = buildStyledArgument(*style, command == u"text");
        if (!group || oneCharOnly)
            return group;
        appendGroup(group, *list, prevAtom);
        return nullptr;
    }
    AtomPointer atom = atomForCommand(command);
    if (!atom) {
        setInternalError();
        return nullptr;
    }
    atom->fontStyle = m_currentFontStyle;
    return addAtom(std::move(atom), *list, prevAtom) && oneCharOnly ? list : nullptr;
}

MTMathListBuilder::ListPointer MTMathListBuilder::buildStyledArgument(MTFontStyle style, bool isText) {
    const bool outerSpacesAllowed = std::exchange(m_spacesAllowed, isText);
    const MTFontStyle outerStyle = std::exchange(m_currentFontStyle, style);
    ListPointer group = buildArgument();
    m_spacesAllowed = outerSpacesAllowed;
    m_currentFontStyle = outerStyle;
    return group;
}
