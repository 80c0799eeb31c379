// The environments of MTMathAtomFactory: what their tables look like.

#include "MTCommandTables.h"
#include "MTInner.h"
#include "MTMathAtomFactory.h"
#include "MTMathList.h"
#include "MTMathStyle.h"
#include "MTMathTable.h"

#include <array>
#include <span>

namespace {

using Rows = std::vector<std::vector<std::shared_ptr<MTMathList>>>;

/// What an environment puts into cells, in front of their own atoms.
enum class FirstAtom { none, blankInSecondColumn, textStyle };

/// An environment with a fixed number of columns.
struct Layout {
    std::u16string_view name;
    double columnSpacing; ///< in mu
    double rowSpacing;    ///< in jots
    std::span<const MTColumnAlignment> columns;
    FirstAtom firstAtom;
};

constexpr std::array rightLeft{MTColumnAlignment::right, MTColumnAlignment::left};
constexpr std::array centered{MTColumnAlignment::center};
constexpr std::array rightCenterLeft{MTColumnAlignment::right, MTColumnAlignment::center, MTColumnAlignment::left};
constexpr std::array leftLeft{MTColumnAlignment::left, MTColumnAlignment::left};

constexpr std::array<Layout, 7> layouts{{
    {u"eqalign", 0, 1, rightLeft, FirstAtom::blankInSecondColumn},
    {u"split", 0, 1, rightLeft, FirstAtom::blankInSecondColumn},
    {u"aligned", 0, 1, rightLeft, FirstAtom::blankInSecondColumn},
    {u"displaylines", 0, 1, centered, FirstAtom::none},
    {u"gather", 0, 1, centered, FirstAtom::none},
    {u"eqnarray", 18, 1, rightCenterLeft, FirstAtom::none},
    {u"cases", 18, 0, leftLeft, FirstAtom::textStyle},
}};

const Layout* layoutNamed(QStringView name) {
    for (const Layout& layout : layouts) {
        if (name == layout.name)
            return &layout;
    }
    return nullptr;
}

void setError(std::optional<MTParseError>& error, MTParseErrors code, const QString& message) {
    if (!error)
        error = MTParseError{code, message};
}

/// Puts `atom`, the same object, in front of every cell, or of those of one column.
void putFirst(MTMathTable& table, const std::shared_ptr<MTMathAtom>& atom, std::optional<std::size_t> onlyColumn = {}) {
    for (const auto& row : table.cells) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (row[column] && (!onlyColumn || column == *onlyColumn))
                row[column]->insert(atom, 0);
        }
    }
}

std::shared_ptr<MTMathAtom> between(QStringView leftDelimiter, QStringView rightDelimiter,
                                    std::shared_ptr<MTMathTable> table) {
    auto inner = std::make_shared<MTInner>();
    inner->setLeftBoundary(MTMathAtomFactory::boundaryForDelimiter(leftDelimiter));
    inner->setRightBoundary(MTMathAtomFactory::boundaryForDelimiter(rightDelimiter));
    inner->innerList = std::make_shared<MTMathList>(std::move(table));
    return inner;
}

std::shared_ptr<MTMathAtom> matrix(const MTCommandTables::MatrixEnvironment& environment,
                                   std::shared_ptr<MTMathTable> table) {
    table->environment = QStringLiteral("matrix");
    table->interRowAdditionalSpacing = 0;
    table->interColumnSpacing = 18;
    putFirst(*table, std::make_shared<MTMathStyle>(MTLineStyle::text));
    if (environment.leftDelimiter.empty())
        return table;
    return between(environment.leftDelimiter, environment.rightDelimiter, std::move(table));
}

} // namespace

std::shared_ptr<MTMathAtom> MTMathAtomFactory::tableWithEnvironment(const std::optional<QString>& environment,
                                                                    const Rows& rows,
                                                                    std::optional<MTParseError>& error) {
    auto table = std::make_shared<MTMathTable>(environment.value_or(QString()));
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < rows[row].size(); ++column)
            table->setCell(rows[row][column], static_cast<int>(row), static_cast<int>(column));
    }

    if (!environment) {
        table->interColumnSpacing = 0;
        table->interRowAdditionalSpacing = 1;
        table->alignments.assign(static_cast<std::size_t>(table->numColumns()), MTColumnAlignment::left);
        return table;
    }
    if (const auto* matrixEnvironment = MTCommandTables::matrixEnvironmentNamed(*environment))
        return matrix(*matrixEnvironment, std::move(table));

    const Layout* const layout = layoutNamed(*environment);
    if (!layout) {
        setError(error, MTParseErrors::invalidEnv, QLatin1String("Unknown environment ") + *environment);
        return nullptr;
    }
    const std::size_t columns = layout->columns.size();
    if (static_cast<std::size_t>(table->numColumns()) != columns) {
        setError(error, MTParseErrors::invalidNumColumns,
                 QStringLiteral("%1 environment can only have %2 column%3")
                     .arg(*environment)
                     .arg(columns)
                     .arg(columns == 1 ? QStringView() : QStringView(u"s")));
        return nullptr;
    }
    table->interColumnSpacing = layout->columnSpacing;
    table->interRowAdditionalSpacing = layout->rowSpacing;
    table->alignments.assign(layout->columns.begin(), layout->columns.end());
    switch (layout->firstAtom) {
    case FirstAtom::none:
        return table;
    case FirstAtom::blankInSecondColumn:
        putFirst(*table, std::make_shared<MTMathAtom>(MTMathAtomType::ordinary), 1);
        return table;
    case FirstAtom::textStyle:
        putFirst(*table, std::make_shared<MTMathStyle>(MTLineStyle::text));
        return between(u"{", u".", std::move(table));
    }
    return nullptr;
}
