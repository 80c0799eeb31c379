#include "DialectSymbols.h"

#include "CTFont.h"
#include "DialectSymbolTable.h"
#include "MTFont.h"
#include "MTFontManager.h"
#include "MTMathAtom.h"
#include "MTMathAtomFactory.h"

#include <QHash>
#include <QSet>

#include <mutex>
#include <utility>

namespace {

QString text(std::u16string_view row) {
    return QString::fromUtf16(row.data(), static_cast<qsizetype>(row.size()));
}

bool hasGlyph(char32_t character) {
    static const std::shared_ptr<const CTFont> font = MTFontManager::fontManager().latinModernFont(10)->ctFont();
    return font->glyph(character) != 0;
}

bool hasGlyphs(const QString& characters) {
    for (const char32_t character : characters.toUcs4()) {
        if (!hasGlyph(character))
            return false;
    }
    return true;
}

std::optional<char32_t> onlyCharacter(const QString& nucleus) {
    const QList<uint> characters = nucleus.toUcs4();
    return characters.size() == 1 ? std::optional<char32_t>(characters.front()) : std::nullopt;
}

/// As a command of the engine, whose name ends at the blank.
QString commandNamed(const QString& name) {
    return u'\\' + name + (name.size() == 1 && !name.front().isLetter() ? QString() : QStringLiteral(" "));
}

/// What the engine shows for a command, if that is a sign with a glyph.
std::optional<FormulaPiece> signOf(const QString& name) {
    const std::shared_ptr<MTMathAtom> atom = MTMathAtomFactory::atomForLatexSymbol(name);
    if (!atom || atom->nucleus.isEmpty() || !hasGlyphs(atom->nucleus))
        return std::nullopt;
    return FormulaPiece(commandNamed(name), atom->type);
}

/// Adds an operator to the engine's vocabulary that has its scripts where those of `like` are.
void addOperator(const QString& name, const QString& nucleus, QStringView like) {
    const std::shared_ptr<MTMathAtom> atom = MTMathAtomFactory::atomForLatexSymbol(like);
    atom->nucleus = nucleus;
    MTMathAtomFactory::addLatexSymbol(name, *atom);
}

/// What is found by name or by character from the first use on.
class Vocabulary {
public:
    static const Vocabulary& shared() {
        static const Vocabulary vocabulary;
        return vocabulary;
    }

    [[nodiscard]] QString nameOf(QStringView command) const {
        const QString name = command.toString();
        return m_replacements.value(name, name);
    }
    [[nodiscard]] QString nameOf(char32_t character) const { return m_names.value(character); }

private:
    Vocabulary() {
        for (const auto& row : DialectSymbolTable::replacements())
            m_replacements.insert(text(row.name), text(row.symbol));
        for (const QString& name : MTMathAtomFactory::supportedLatexSymbolNames())
            note(name);
        for (const auto& row : DialectSymbolTable::symbols()) {
            const QString name = text(row.name);
            const QString nucleus = QString::fromUcs4(&row.character, 1);
            if (row.type == MTMathAtomType::largeOperator)
                addOperator(name, nucleus, u"int");
            else
                MTMathAtomFactory::addLatexSymbol(name, MTMathAtom(row.type, nucleus));
            note(name);
        }
        for (const auto& row : DialectSymbolTable::operators())
            addOperator(text(row.name), text(row.words), u"lim");
        // Letters that the engine has under other code points than those that are typed.
        const std::pair<char32_t, const char16_t*> typed[] = {
            {0x03C2, u"finalsigma"}, {0x03C6, u"varphi"}, {0x03D5, u"phi"},        {0x03F5, u"epsilon"},
            {0x03D1, u"vartheta"},   {0x03F1, u"varrho"}, {0x03D6, u"varpi"},      {0x03F0, u"varkappa"},
            {0x2202, u"partial"},    {0x00B5, u"mu"},     {0x2126, u"Omega"},      {0x2206, u"Delta"},
            {0x00B7, u"cdot"},       {0x2022, u"bullet"}, {0x2223, u"mid"},        {0x22A5, u"perp"},
            {0x25B3, u"triangle"},   {0x2329, u"langle"}, {0x232A, u"rangle"},     {0x2217, u"ast"},
            {0x212B, u"angstrom"},   {0x25FB, u"Box"},    {0x25FC, u"blacksquare"}};
        for (const auto& [character, name] : typed)
            m_names.insert(character, QString::fromUtf16(name));
    }

    /// The first name of a character is kept.
    void note(const QString& name) {
        const std::shared_ptr<MTMathAtom> atom = MTMathAtomFactory::atomForLatexSymbol(name);
        const std::optional<char32_t> character = atom ? onlyCharacter(atom->nucleus) : std::nullopt;
        if (character && !m_replacements.contains(name) && !m_names.contains(*character))
            m_names.insert(*character, name);
    }

    QHash<QString, QString> m_replacements;
    QHash<char32_t, QString> m_names;
};

/// Adds a character to the engine's vocabulary at its first use, under a name that no one writes. There are as many as
/// the font has glyphs at the most.
template <typename MakeAtom>
std::optional<QString> added(QLatin1String prefix, char32_t character, MakeAtom makeAtom) {
    if (!hasGlyph(character))
        return std::nullopt;
    QString name = prefix;
    for (int shift = 20; shift >= 0; shift -= 4)
        name += QChar(static_cast<char16_t>(u'a' + ((character >> static_cast<unsigned>(shift)) & 0xFU)));
    static std::mutex mutex;
    static QSet<QString> known;
    const std::lock_guard lock(mutex);
    if (!known.contains(name)) {
        known.insert(name);
        makeAtom(name, QString::fromUcs4(&character, 1));
    }
    return commandNamed(name);
}

} // namespace

namespace DialectSymbols {

std::optional<FormulaPiece> forCommand(QStringView name) {
    return signOf(Vocabulary::shared().nameOf(name));
}

std::optional<FormulaPiece> forCharacter(char32_t character) {
    if (const QString name = Vocabulary::shared().nameOf(character); !name.isEmpty()) {
        if (std::optional<FormulaPiece> piece = signOf(name))
            return piece;
    }
    const std::optional<QString> sign = ordinary(character);
    return sign ? std::optional(FormulaPiece(*sign, MTMathAtomType::ordinary)) : std::nullopt;
}

std::optional<QString> ordinary(char32_t character) {
    return added(QLatin1String("sign"), character, [](const QString& name, const QString& nucleus) {
        MTMathAtomFactory::addLatexSymbol(name, MTMathAtom(MTMathAtomType::ordinary, nucleus));
    });
}

std::optional<QString> withLimits(char32_t character) {
    return added(QLatin1String("limits"), character,
                 [](const QString& name, const QString& nucleus) { addOperator(name, nucleus, u"sum"); });
}

std::optional<char32_t> characterOf(QStringView name) {
    const std::shared_ptr<MTMathAtom> atom = MTMathAtomFactory::atomForLatexSymbol(Vocabulary::shared().nameOf(name));
    return atom ? onlyCharacter(atom->nucleus) : std::nullopt;
}

} // namespace DialectSymbols
