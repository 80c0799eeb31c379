// Tables: environments, and lists that turn out to have rows.

#include "DialectDelimiters.h"
#include "DialectSpaces.h"
#include "FormulaRewriter.h"

#include <algorithm>

using Type = MTMathAtomType;

namespace {

enum class Shape {
    plain,   ///< no table: what is in it
    matrix,  ///< centred columns
    aligned, ///< pairs of columns, the first on the right and the second on the left
    lines,   ///< one column
    cases,   ///< two columns behind a brace
    array    ///< columns that its argument describes
};

struct Environment {
    QStringView name; ///< without a star
    Shape shape;
    QStringView engineName; ///< where the engine has it under another
    MTLineStyle style;      ///< of the cells
    bool hasArgument = false;
};

constexpr Environment environments[] = {
    {u"equation", Shape::plain, {}, MTLineStyle::display},
    {u"math", Shape::plain, {}, MTLineStyle::display},
    {u"displaymath", Shape::plain, {}, MTLineStyle::display},
    {u"matrix", Shape::matrix, u"matrix", MTLineStyle::text},
    {u"pmatrix", Shape::matrix, u"pmatrix", MTLineStyle::text},
    {u"bmatrix", Shape::matrix, u"bmatrix", MTLineStyle::text},
    {u"Bmatrix", Shape::matrix, u"Bmatrix", MTLineStyle::text},
    {u"vmatrix", Shape::matrix, u"vmatrix", MTLineStyle::text},
    {u"Vmatrix", Shape::matrix, u"Vmatrix", MTLineStyle::text},
    {u"smallmatrix", Shape::matrix, u"matrix", MTLineStyle::script},
    {u"subarray", Shape::matrix, u"matrix", MTLineStyle::script, true},
    {u"aligned", Shape::aligned, {}, MTLineStyle::display},
    {u"align", Shape::aligned, {}, MTLineStyle::display},
    {u"split", Shape::aligned, {}, MTLineStyle::display},
    {u"eqalign", Shape::aligned, {}, MTLineStyle::display},
    {u"eqnarray", Shape::matrix, u"eqnarray", MTLineStyle::display},
    {u"flalign", Shape::aligned, {}, MTLineStyle::display},
    {u"alignat", Shape::aligned, {}, MTLineStyle::display, true},
    {u"alignedat", Shape::aligned, {}, MTLineStyle::display, true},
    {u"gather", Shape::lines, {}, MTLineStyle::display},
    {u"gathered", Shape::lines, {}, MTLineStyle::display},
    {u"multline", Shape::lines, {}, MTLineStyle::display},
    {u"multlined", Shape::lines, {}, MTLineStyle::display},
    {u"displaylines", Shape::lines, {}, MTLineStyle::display},
    {u"cases", Shape::cases, {}, MTLineStyle::text},
    {u"dcases", Shape::cases, {}, MTLineStyle::display},
    {u"rcases", Shape::cases, {}, MTLineStyle::text},
    {u"drcases", Shape::cases, {}, MTLineStyle::display},
    {u"array", Shape::array, {}, MTLineStyle::text, true},
};

const Environment* environmentNamed(QStringView name) {
    const QStringView plain = name.endsWith(u'*') ? name.chopped(1) : name;
    const auto* const found = std::find_if(std::begin(environments), std::end(environments),
                                           [&](const Environment& environment) { return environment.name == plain; });
    return found != std::end(environments) ? found : nullptr;
}

QString tableNamed(QStringView name, const QStringList& rows) {
    const QString braced = u'{' + name.toString() + u'}';
    return QLatin1String("\\begin") + braced + rows.join(QLatin1String("\\\\")) + QLatin1String("\\end") + braced;
}

/// Rows of two cells: further ones stand behind the second.
QStringList inTwoColumns(const std::vector<QStringList>& rows, QLatin1String space) {
    QStringList result;
    for (const QStringList& cells : rows) {
        QString second = cells.value(1);
        for (qsizetype i = 2; i < cells.size(); ++i)
            second += (i % 2 == 0 ? space : QLatin1String("{}")) + cells[i];
        result += cells.value(0) + u'&' + second;
    }
    return result;
}

QStringList joined(const std::vector<QStringList>& rows, QLatin1String separator, QLatin1String cellStart = {}) {
    QStringList result;
    for (const QStringList& cells : rows)
        result += cellStart + cells.join(QString(separator + cellStart));
    return result;
}

/// The kinds of columns and, as "|", the bars between them. Empty for what can't be read.
QString columnsOf(QStringView description) {
    constexpr qsizetype mostColumns = 200;
    QString columns;
    for (qsizetype i = 0; i < description.size() && columns.size() < mostColumns; ++i) {
        const QChar kind = description[i];
        const auto argument = [&] {
            const qsizetype start = description.indexOf(u'{', i);
            const qsizetype end = description.indexOf(u'}', i);
            i = end < 0 ? description.size() : end;
            return start < 0 || end < start ? QStringView() : description.sliced(start + 1, end - start - 1);
        };
        if (kind == u'l' || kind == u'c' || kind == u'r' || kind == u'|') {
            columns += kind;
        } else if (kind == u'p' || kind == u'm' || kind == u'b') {
            (void)argument();
            columns += u'l';
        } else if (kind == u'@' || kind == u'!' || kind == u'>' || kind == u'<') {
            (void)argument();
        } else if (kind == u'*') {
            const int count = argument().toInt();
            columns += columnsOf(argument()).repeated(std::clamp(count, 0, int(mostColumns)));
        }
    }
    return columns.left(mostColumns);
}

} // namespace

FormulaRewriter::Rows FormulaRewriter::readRows(MTLineStyle style, bool isBehindStyle) {
    Rows table;
    table.rows.emplace_back();
    while (true) {
        if (readRules() && table.rows.size() > 1) {
            // A line between rows stands under the cells above it.
            for (QString& cell : table.rows[table.rows.size() - 2])
                cell = cell.isEmpty() ? cell : QLatin1String("\\underline") + braced(cell);
        }
        table.last = List(style, isBehindStyle);
        readList(table.last);
        table.rows.back() += table.last.latex();
        const FormulaToken& end = m_tokens.peek();
        if (end.kind == Kind::cell) {
            m_tokens.next();
        } else if (end.isCommand(u"\\") || end.isCommand(u"cr") || end.isCommand(u"newline") ||
                   end.isCommand(u"tabularnewline")) {
            readRowEnd();
            table.rows.emplace_back();
        } else {
            break;
        }
    }
    // A break behind the last row makes none.
    if (table.rows.size() > 1 && table.rows.back().size() == 1 && table.rows.back().front().isEmpty())
        table.rows.pop_back();
    return table;
}

void FormulaRewriter::readRowEnd() {
    m_tokens.next();
    if (m_tokens.peek().is(U'*'))
        m_tokens.next();
    // "[6pt]" is a distance, "[x]" is not.
    const std::size_t start = m_tokens.position();
    constexpr int longest = 12;
    QString option;
    if (!m_tokens.peek().is(U'['))
        return;
    m_tokens.next();
    for (int i = 0; i < longest && m_tokens.peek().kind == Kind::character && !m_tokens.peek().is(U']'); ++i)
        option += m_tokens.next().text;
    if (m_tokens.peek().is(U']') && DialectSpaces::muOf(option))
        m_tokens.next();
    else
        m_tokens.moveTo(start);
}

bool FormulaRewriter::readRules() {
    bool hasRule = false;
    for (m_tokens.skipBlanks(); m_tokens.peek().kind == Kind::command; m_tokens.skipBlanks()) {
        const QStringView name = m_tokens.peek().text;
        if (name == u"cline" || name == u"cmidrule") {
            m_tokens.next();
            (void)rawArgument();
        } else if (name == u"hline" || name == u"midrule" || name == u"toprule" || name == u"bottomrule") {
            m_tokens.next();
        } else {
            break;
        }
        hasRule = true;
    }
    return hasRule;
}

FormulaRewriter::List FormulaRewriter::readContents(MTLineStyle style) {
    Rows table = readRows(style, false);
    if (table.rows.size() == 1 && table.rows.front().size() == 1)
        return std::move(table.last);
    List list(style);
    const bool hasCells =
        std::any_of(table.rows.begin(), table.rows.end(), [](const QStringList& cells) { return cells.size() > 1; });
    list.writer.add({hasCells ? tableNamed(u"aligned", inTwoColumns(table.rows, QLatin1String("\\qquad ")))
                              : tableNamed(u"gather", joined(table.rows, QLatin1String())),
                     Type::inner});
    return list;
}

FormulaPiece FormulaRewriter::readEnvironment(List& list) {
    const QString name = rawArgument();
    const Environment* const environment = environmentNamed(name);
    if (!environment) {
        fail();
        return {{}, Type::ordinary};
    }
    m_tokens.skipBlanks();
    if (environment->shape != Shape::plain && m_tokens.peek().is(U'[') &&
        (name.endsWith(u'*') || environment->shape == Shape::aligned || environment->shape == Shape::array))
        (void)rawOption();
    const QString columns = environment->hasArgument ? rawArgument() : QString();
    const bool isInScript = list.style > MTLineStyle::text;
    const MTLineStyle cellStyle = environment->shape == Shape::plain ? list.style : environment->style;
    const bool isBehindStyle =
        environment->shape == Shape::matrix || environment->shape == Shape::cases || environment->shape == Shape::array;
    Rows table = readRows(cellStyle, isBehindStyle && environment->engineName != u"eqnarray");
    if (!m_tokens.next().isCommand(u"end") || rawArgument() != name)
        fail();
    switch (environment->shape) {
    case Shape::plain:
        if (table.rows.size() == 1 && table.rows.front().size() == 1)
            return {braced(table.last.latex()), Type::inner, table.last.writer.left(), table.last.writer.right()};
        [[fallthrough]];
    case Shape::aligned:
        return {tableNamed(u"aligned", inTwoColumns(table.rows, QLatin1String("\\qquad "))), Type::inner};
    case Shape::lines:
        return {tableNamed(u"gather", joined(table.rows, QLatin1String("\\quad "))), Type::inner};
    case Shape::cases: {
        const QLatin1String start(cellStyle == MTLineStyle::display ? "\\displaystyle " : "");
        if (environment->name.contains(u'r'))
            return {QLatin1String("\\left.") + tableNamed(u"matrix", joined(table.rows, QLatin1String("&"), start)) +
                        QLatin1String("\\right\\}"),
                    Type::inner};
        for (QStringList& cells : table.rows)
            for (QString& cell : cells)
                cell.prepend(start);
        return {tableNamed(u"cases", inTwoColumns(table.rows, QLatin1String("\\quad "))), Type::inner};
    }
    case Shape::array:
        return {array(table, columnsOf(columns)), Type::inner};
    case Shape::matrix:
        if (cellStyle == MTLineStyle::script) {
            const QString cells =
                tableNamed(u"matrix", joined(table.rows, QLatin1String("&"), QLatin1String("\\scriptstyle ")));
            return keptPiece(isInScript ? kept(cells) : inStyle(MTLineStyle::script, cells), Type::ordinary);
        }
        if (environment->engineName == u"eqnarray") {
            for (QStringList& cells : table.rows)
                cells = QStringList{cells.value(0), cells.value(1), cells.mid(2).join(QLatin1String("\\quad "))};
        }
        return {tableNamed(environment->engineName, joined(table.rows, QLatin1String("&"))), Type::inner};
    }
    return {{}, Type::ordinary};
}

QString FormulaRewriter::array(const Rows& table, const QString& columns) {
    constexpr std::size_t mostCells = 10'000; // no more than a person would read, since bars are long to write
    if (table.rows.size() * static_cast<std::size_t>(columns.size()) > mostCells)
        fail();
    if (m_hasFailed)
        return {};
    // A bar is a column of its own.
    const QString bar = QLatin1String("\\left|") + DialectDelimiters::strut(1) + QLatin1String("\\right.");
    QStringList rows;
    for (const QStringList& cells : table.rows) {
        QStringList row;
        qsizetype next = 0;
        for (const QChar kind : columns)
            row += kind == u'|' ? bar : next < cells.size() ? cells[next++] : QString();
        for (; next < cells.size(); ++next)
            row += cells[next];
        rows += row.join(u'&');
    }
    return tableNamed(u"matrix", rows);
}

FormulaPiece FormulaRewriter::readLines(MTLineStyle style) {
    m_tokens.skipBlanks();
    if (m_tokens.next().kind != Kind::open)
        fail();
    const Rows table = readRows(MTLineStyle::script, true);
    if (m_tokens.next().kind != Kind::close)
        fail();
    const QString latex =
        tableNamed(u"matrix", joined(table.rows, QLatin1String("\\quad "), QLatin1String("\\scriptstyle ")));
    return keptPiece(style > MTLineStyle::text ? kept(latex) : inStyle(MTLineStyle::script, latex), Type::ordinary);
}

FormulaPiece FormulaRewriter::readDisplayLines() {
    m_tokens.skipBlanks();
    if (m_tokens.next().kind != Kind::open)
        fail();
    const Rows table = readRows(MTLineStyle::display, false);
    if (m_tokens.next().kind != Kind::close)
        fail();
    return {tableNamed(u"gather", joined(table.rows, QLatin1String("\\quad "))), Type::inner};
}
