#include "MTMathListWriter.h"

#include "MTCommandTables.h"
#include "MTFraction.h"
#include "MTInner.h"
#include "MTLargeOperator.h"
#include "MTMathAtomFactory.h"
#include "MTMathColor.h"
#include "MTMathList.h"
#include "MTMathSpace.h"
#include "MTMathStyle.h"
#include "MTMathTable.h"
#include "MTRadical.h"

#include <QStringBuilder>

#include <utility>

namespace {

/// Whether an atom is there for the spacing of its neighbours only.
bool isBlank(const MTMathAtom& atom) {
    return atom.type == MTMathAtomType::ordinary && atom.nucleus.isEmpty() && !atom.subScript() && !atom.superScript();
}

/// The source so far, and the font style that its open group is in.
class Writer {
public:
    /// Writes a list in a font style context of its own. A null list leaves nothing.
    void writeList(const MTMathList* list, std::size_t firstAtom = 0);
    void writeAtom(const MTMathAtom& atom);
    /// Closes the group of the present font style, if any, and opens that of `style`.
    void changeFontStyle(MTFontStyle style);

    [[nodiscard]] QString takeText() { return std::move(m_text); }

private:
    void writeNucleus(const MTMathAtom& atom);
    void writeText(const MTMathAtom& atom);
    /// The command and, as its argument, the list of a decorating atom.
    void writeDecorated(const MTMathAtom& atom, QStringView command);
    void writeFraction(const MTFraction& fraction);
    void writeRadical(const MTRadical& radical);
    void writeInner(const MTInner& inner);
    void writeLargeOperator(const MTLargeOperator& op);
    void writeSpace(const MTMathSpace& space);
    void writeTable(const MTMathTable& table);
    /// "{list}".
    void writeGroup(const std::shared_ptr<MTMathList>& list);
    /// "\name ".
    void writeCommand(QStringView name);

    QString m_text;
    MTFontStyle m_style = MTFontStyle::defaultStyle;
};

void Writer::writeList(const MTMathList* list, std::size_t firstAtom) {
    if (!list)
        return;
    const MTFontStyle outerStyle = std::exchange(m_style, MTFontStyle::defaultStyle);
    for (std::size_t i = firstAtom; i < list->atoms().size(); ++i) {
        changeFontStyle(list->atoms()[i]->fontStyle);
        writeAtom(*list->atoms()[i]);
    }
    changeFontStyle(MTFontStyle::defaultStyle);
    m_style = outerStyle;
}

void Writer::changeFontStyle(MTFontStyle style) {
    if (style == m_style)
        return;
    if (m_style != MTFontStyle::defaultStyle)
        m_text += u'}';
    if (style != MTFontStyle::defaultStyle)
        m_text += u'\\' % MTMathAtomFactory::fontNameForStyle(style) % u'{';
    m_style = style;
}

void Writer::writeAtom(const MTMathAtom& atom) {
    writeNucleus(atom);
    if (atom.superScript()) {
        m_text += u'^';
        writeGroup(atom.superScript());
    }
    if (atom.subScript()) {
        m_text += u'_';
        writeGroup(atom.subScript());
    }
}

void Writer::writeNucleus(const MTMathAtom& atom) {
    // The class is asked for as well: a bare atom may bear the type of a composite kind.
    switch (atom.type) {
    case MTMathAtomType::fraction:
        if (const auto* fraction = dynamic_cast<const MTFraction*>(&atom))
            return writeFraction(*fraction);
        break;
    case MTMathAtomType::radical:
        if (const auto* radical = dynamic_cast<const MTRadical*>(&atom))
            return writeRadical(*radical);
        break;
    case MTMathAtomType::inner:
        if (const auto* inner = dynamic_cast<const MTInner*>(&atom))
            return writeInner(*inner);
        break;
    case MTMathAtomType::largeOperator:
        if (const auto* op = dynamic_cast<const MTLargeOperator*>(&atom))
            return writeLargeOperator(*op);
        break;
    case MTMathAtomType::space:
        if (const auto* space = dynamic_cast<const MTMathSpace*>(&atom))
            return writeSpace(*space);
        break;
    case MTMathAtomType::style:
        if (const auto* style = dynamic_cast<const MTMathStyle*>(&atom))
            return writeCommand(MTCommandTables::nameOfStyle(style->style).name);
        break;
    case MTMathAtomType::table:
        if (const auto* table = dynamic_cast<const MTMathTable*>(&atom))
            return writeTable(*table);
        break;
    case MTMathAtomType::underline:
        return writeDecorated(atom, u"\\underline");
    case MTMathAtomType::overline:
        return writeDecorated(atom, u"\\overline");
    case MTMathAtomType::accent:
        return writeDecorated(atom, QString(u'\\' % MTMathAtomFactory::accentName(atom).value_or(QString())));
    case MTMathAtomType::color:
    case MTMathAtomType::textcolor:
    case MTMathAtomType::colorBox:
        if (const auto* colored = dynamic_cast<const MTColoredAtom*>(&atom))
            return writeDecorated(atom, QString(u'\\' % colored->command() % u'{' % colored->colorString % u'}'));
        break;
    default:
        break;
    }
    writeText(atom);
}

void Writer::writeDecorated(const MTMathAtom& atom, QStringView command) {
    const auto* const decorated = dynamic_cast<const MTInnerListAtom*>(&atom);
    if (!decorated)
        return writeText(atom);
    m_text += command;
    writeGroup(decorated->innerList);
}

void Writer::writeText(const MTMathAtom& atom) {
    if (atom.nucleus.isEmpty())
        m_text += QLatin1String("{}");
    else if (atom.nucleus == u'\u2236')
        m_text += u':';
    else if (atom.nucleus == u'\u2212')
        m_text += u'-';
    else if (const std::optional<QString> name = MTMathAtomFactory::latexSymbolName(atom))
        writeCommand(*name);
    else
        m_text += atom.nucleus;
}

void Writer::writeFraction(const MTFraction& fraction) {
    if (fraction.hasRule) {
        m_text += QLatin1String("\\frac");
        writeGroup(fraction.numerator);
        writeGroup(fraction.denominator);
        return;
    }
    m_text += u'{';
    writeList(fraction.numerator.get());
    m_text += QLatin1String(" \\");
    const auto* command =
        MTCommandTables::fractionCommandWithDelimiters(fraction.leftDelimiter, fraction.rightDelimiter);
    if (command)
        m_text += MTCommandTables::string(command->name);
    else
        m_text += QLatin1String("atopwithdelims") % fraction.leftDelimiter % fraction.rightDelimiter;
    m_text += u' ';
    writeList(fraction.denominator.get());
    m_text += u'}';
}

void Writer::writeRadical(const MTRadical& radical) {
    m_text += QLatin1String("\\sqrt");
    if (radical.degree) {
        m_text += u'[';
        writeList(radical.degree.get());
        m_text += u']';
    }
    writeGroup(radical.radicand);
}

void Writer::writeInner(const MTInner& inner) {
    const MTMathAtom* const left = inner.leftBoundary().get();
    const MTMathAtom* const right = inner.rightBoundary().get();
    if (!left && !right) {
        writeGroup(inner.innerList);
        return;
    }
    m_text += QLatin1String("\\left") % (left ? MTMathListWriter::delimiterString(*left) : QStringLiteral(".")) % u' ';
    writeList(inner.innerList.get());
    m_text +=
        QLatin1String("\\right") % (right ? MTMathListWriter::delimiterString(*right) : QStringLiteral(".")) % u' ';
}

void Writer::writeLargeOperator(const MTLargeOperator& op) {
    const std::optional<QString> name = MTMathAtomFactory::latexSymbolName(op);
    if (!name) {
        m_text += op.nucleus;
        return;
    }
    writeCommand(*name);
    const std::shared_ptr<MTMathAtom> known = MTMathAtomFactory::atomForLatexSymbol(*name);
    const auto* const usual = dynamic_cast<const MTLargeOperator*>(known.get());
    if (usual && usual->limits != op.limits)
        writeCommand(op.limits ? u"limits" : u"nolimits");
}

void Writer::writeSpace(const MTMathSpace& space) {
    if (const auto* command = MTCommandTables::spaceOfWidth(space.space))
        writeCommand(command->name);
    else
        m_text += QLatin1String("\\mkern") % QString::number(space.space, 'f', 1) % QLatin1String("mu");
}

void Writer::writeTable(const MTMathTable& table) {
    const QString& environment = table.environment;
    if (!environment.isEmpty())
        m_text += QLatin1String("\\begin{") % environment % u'}';
    const bool isMatrix = environment == u"matrix";
    const bool isAligned = environment == u"eqalign" || environment == u"split" || environment == u"aligned";
    for (std::size_t row = 0; row < table.cells.size(); ++row) {
        if (row > 0)
            m_text += QLatin1String("\\\\ ");
        for (std::size_t column = 0; column < table.cells[row].size(); ++column) {
            if (column > 0)
                m_text += u'&';
            const MTMathList* const cell = table.cells[row][column].get();
            const MTMathAtom* const first = cell && !cell->isEmpty() ? cell->atoms().front().get() : nullptr;
            // The environment puts these in itself.
            const bool skipsFirst = first && ((isMatrix && first->type == MTMathAtomType::style) ||
                                              (isAligned && column == 1 && isBlank(*first)));
            writeList(cell, skipsFirst ? 1 : 0);
        }
    }
    if (!environment.isEmpty())
        m_text += QLatin1String("\\end{") % environment % u'}';
}

void Writer::writeGroup(const std::shared_ptr<MTMathList>& list) {
    m_text += u'{';
    writeList(list.get());
    m_text += u'}';
}

void Writer::writeCommand(QStringView name) {
    m_text += u'\\';
    m_text += name;
    m_text += u' ';
}

} // namespace

QString MTMathList::string() const {
    Writer writer;
    writer.writeList(this);
    return writer.takeText();
}

QString MTMathAtom::string() const {
    Writer writer;
    writer.changeFontStyle(fontStyle);
    writer.writeAtom(*this);
    writer.changeFontStyle(MTFontStyle::defaultStyle);
    return writer.takeText();
}

QString MTMathListWriter::delimiterString(const MTMathAtom& boundary) {
    const std::optional<QString> name = MTMathAtomFactory::delimiterName(boundary);
    if (!name)
        return {};
    static constexpr QStringView plain = u"()[]<>|./";
    if (name->size() == 1 && plain.contains(name->front()))
        return *name;
    return *name == u"||" ? QStringLiteral("\\|") : QString(u'\\' % *name);
}
