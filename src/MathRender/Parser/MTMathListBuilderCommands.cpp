// What the commands of formulas build that take arguments, change what is around them, or end what is being read.

#include "MTAccent.h"
#include "MTCommandTables.h"
#include "MTFraction.h"
#include "MTInner.h"
#include "MTLargeOperator.h"
#include "MTMathAtomFactory.h"
#include "MTMathColor.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTOverLine.h"
#include "MTRadical.h"
#include "MTUnderLine.h"

#include <QScopedValueRollback>
#include <QStringBuilder>

#include <utility>

MTMathListBuilder::ListPointer MTMathListBuilder::stopCommand(QStringView command, const ListPointer& list,
                                                              char16_t stopChar) {
    if (command == u"right") {
        if (!m_currentInnerAtom) {
            setError(MTParseErrors::missingLeft, QStringLiteral("Missing \\left"));
            return nullptr;
        }
        m_currentInnerAtom->setRightBoundary(getBoundaryAtom(command));
        return m_currentInnerAtom->rightBoundary() ? list : nullptr;
    }
    if (command == u'\\' || command == u"cr") {
        if (!m_currentEnv)
            return buildPlainTable(list, true);
        ++m_currentEnv->numRows;
        return list;
    }
    if (command == u"end")
        return endEnvironment(list);
    if (MTCommandTables::fractionCommandNamed(command))
        return buildFractionOfGroup(command, list, stopChar);
    return nullptr;
}

MTMathListBuilder::ListPointer
MTMathListBuilder::buildFractionOfGroup(QStringView command, const ListPointer& numerator, char16_t stopChar) {
    const auto* const row = MTCommandTables::fractionCommandNamed(command);
    auto fraction = std::make_shared<MTFraction>(row->hasRule);
    fraction->leftDelimiter = MTCommandTables::string(row->leftDelimiter);
    fraction->rightDelimiter = MTCommandTables::string(row->rightDelimiter);
    fraction->numerator = numerator;
    fraction->denominator = buildInternal(false, stopChar);
    return m_error ? nullptr : std::make_shared<MTMathList>(std::move(fraction));
}

MTMathListBuilder::ListPointer MTMathListBuilder::endEnvironment(const ListPointer& list) {
    if (!m_currentEnv) {
        setError(MTParseErrors::missingBegin, QStringLiteral("Missing \\begin"));
        return nullptr;
    }
    const std::optional<QStringView> name = readEnvironment();
    if (!name)
        return nullptr;
    if (m_currentEnv->envName != name) {
        setError(MTParseErrors::invalidEnv, QLatin1String("Begin environment name ") %
                                                m_currentEnv->envName.value_or(u"(none)") %
                                                QLatin1String(" does not match end name: ") % *name);
        return nullptr;
    }
    m_currentEnv->ended = true;
    return list;
}

bool MTMathListBuilder::applyModifier(QStringView command, MTMathAtom* atom) {
    const bool limits = command == u"limits";
    if (!limits && command != u"nolimits")
        return false;
    if (auto* op = dynamic_cast<MTLargeOperator*>(atom)) {
        op->limits = limits;
    } else {
        setError(MTParseErrors::invalidLimits, limits
                                                   ? QStringLiteral("Limits can only be applied to an operator.")
                                                   : QStringLiteral("No limits can only be applied to an operator."));
    }
    return true;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::atomForCommand(QStringView command) {
    if (AtomPointer atom = MTMathAtomFactory::atomForLatexSymbol(command))
        return atom;
    if (const std::shared_ptr<MTAccent> accent = MTMathAtomFactory::accentWithName(command))
        return buildDecorated(accent);
    if (command == u"frac")
        return buildFraction();
    if (command == u"binom")
        return buildBinomial();
    if (command == u"sqrt")
        return buildRadical();
    if (command == u"left")
        return buildLeftRight();
    if (command == u"overline")
        return buildDecorated(std::make_shared<MTOverLine>());
    if (command == u"underline")
        return buildDecorated(std::make_shared<MTUnderLine>());
    if (command == u"begin")
        return buildEnvironment();
    if (command == u"color")
        return buildColored(std::make_shared<MTMathColor>());
    if (command == u"textcolor")
        return buildColored(std::make_shared<MTMathTextColor>());
    if (command == u"colorbox")
        return buildColored(std::make_shared<MTMathColorbox>());
    setError(MTParseErrors::invalidCommand, QLatin1String("Invalid command \\") % command);
    return nullptr;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildFraction() {
    auto fraction = std::make_shared<MTFraction>();
    fraction->numerator = buildArgument();
    fraction->denominator = buildArgument();
    return fraction;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildBinomial() {
    auto fraction = std::make_shared<MTFraction>(false);
    fraction->numerator = buildArgument();
    fraction->denominator = buildArgument();
    fraction->leftDelimiter = QStringLiteral("(");
    fraction->rightDelimiter = QStringLiteral(")");
    return fraction;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildRadical() {
    auto radical = std::make_shared<MTRadical>();
    if (m_reader.hasCharacters()) {
        if (m_reader.next() == u'[')
            radical->degree = buildInternal(false, u']');
        else
            m_reader.stepBack();
    }
    radical->radicand = buildArgument();
    return radical;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildLeftRight() {
    auto inner = std::make_shared<MTInner>();
    const QScopedValueRollback<MTInner*> outer(m_currentInnerAtom, inner.get());
    inner->setLeftBoundary(getBoundaryAtom(u"left"));
    if (!inner->leftBoundary())
        return nullptr;
    inner->innerList = buildInternal(false);
    if (!inner->rightBoundary()) {
        setError(MTParseErrors::missingRight, QStringLiteral("Missing \\right"));
        return nullptr;
    }
    return inner;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildDecorated(const std::shared_ptr<MTInnerListAtom>& atom) {
    atom->innerList = buildArgument();
    return atom;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildColored(const std::shared_ptr<MTColoredAtom>& atom) {
    const std::optional<QStringView> color = readColor();
    if (!color)
        return nullptr;
    atom->colorString = color->toString();
    return buildDecorated(atom);
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildEnvironment() {
    const std::optional<QStringView> name = readEnvironment();
    return name ? buildTable(name, nullptr, false) : nullptr;
}

MTMathListBuilder::AtomPointer MTMathListBuilder::buildTable(std::optional<QStringView> environment,
                                                             const ListPointer& firstList, bool isRow) {
    // A table stands between two lists, and brings a further list when it gets delimiters.
    const NestingLevel level(*this);
    if (!level.isAllowed())
        return nullptr;
    std::optional<MTEnvProperties> outerEnv = std::exchange(m_currentEnv, MTEnvProperties{environment});
    std::vector<std::vector<ListPointer>> rows(1);
    std::size_t row = 0;
    if (firstList) {
        rows.back().push_back(firstList);
        if (isRow) {
            row = ++m_currentEnv->numRows;
            rows.emplace_back();
        }
    }
    while (!m_currentEnv->ended && m_reader.hasCharacters()) {
        ListPointer list = buildInternal(false);
        if (!list)
            return nullptr;
        rows.back().push_back(std::move(list));
        if (m_currentEnv->numRows > row) {
            row = m_currentEnv->numRows;
            rows.emplace_back();
        }
    }
    if (!m_currentEnv->ended && environment) {
        setError(MTParseErrors::missingEnd, QStringLiteral("Missing \\end"));
        return nullptr;
    }
    AtomPointer table = MTMathAtomFactory::tableWithEnvironment(
        environment ? std::optional(environment->toString()) : std::nullopt, rows, m_error);
    m_currentEnv = outerEnv;
    return table;
}

MTMathListBuilder::ListPointer MTMathListBuilder::buildPlainTable(const ListPointer& firstList, bool isRow) {
    AtomPointer table = buildTable(std::nullopt, firstList, isRow);
    return table ? std::make_shared<MTMathList>(std::move(table)) : nullptr;
}
