#include "HtmlHiding.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <tuple>

namespace {

/// Whether declarations hide an element; none when they say nothing about it.
std::optional<bool> isHiding(QStringView declarations) {
    static const QRegularExpression word(QStringLiteral("(?:^|[;\\s])(display|visibility)\\s*:\\s*([a-z-]+)"),
                                         QRegularExpression::CaseInsensitiveOption);
    if (declarations.isEmpty())
        return std::nullopt;
    std::optional<bool> display;
    std::optional<bool> visibility;
    for (auto found = word.globalMatch(declarations.toString()); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        const QString value = match.captured(2).toLower();
        if (match.captured(1).startsWith(QLatin1Char('d'), Qt::CaseInsensitive))
            display = value == QLatin1String("none");
        else
            visibility = value == QLatin1String("hidden") || value == QLatin1String("collapse");
    }
    if (!display && !visibility)
        return std::nullopt;
    return display.value_or(false) || visibility.value_or(false);
}

QString withoutComments(QStringView sheet) {
    QString text;
    while (true) {
        const qsizetype start = sheet.indexOf(QLatin1String("/*"));
        text += sheet.left(start < 0 ? sheet.size() : start);
        const qsizetype end = start < 0 ? -1 : sheet.indexOf(QLatin1String("*/"), start + 2);
        if (end < 0)
            return text;
        sheet = sheet.mid(end + 2);
    }
}

QStringList classesOf(const HtmlTag& tag) {
    return tag.attribute(QStringLiteral("class")).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

HtmlHiding::HtmlHiding(QStringView html) {
    const QString start = QStringLiteral("<style");
    for (qsizetype at = html.indexOf(start, 0, Qt::CaseInsensitive); at >= 0;
         at = html.indexOf(start, 0, Qt::CaseInsensitive)) {
        html = html.mid(at);
        if (!HtmlTag::read(html))
            return;
        const qsizetype end = html.indexOf(QStringLiteral("</style"), 0, Qt::CaseInsensitive);
        addSheet(html.left(end < 0 ? html.size() : end));
        html = html.mid(end < 0 ? html.size() : end);
    }
}

void HtmlHiding::addSheet(QStringView sheet) {
    QString text = withoutComments(sheet);
    text.remove(QStringLiteral("<!--")).remove(QStringLiteral("-->"));
    QStringView rest = text;
    while (!rest.isEmpty()) {
        const qsizetype open = rest.indexOf(QLatin1Char('{'));
        if (open < 0)
            return;
        QStringView selectors = rest.left(open);
        selectors = selectors.mid(selectors.lastIndexOf(QLatin1Char(';')) + 1).trimmed(); // behind an import
        rest = rest.mid(open + 1);
        qsizetype end = 0;
        for (int depth = 1; end < rest.size(); ++end) {
            depth += rest[end] == QLatin1Char('{') ? 1 : rest[end] == QLatin1Char('}') ? -1 : 0;
            if (depth == 0)
                break;
        }
        if (!selectors.startsWith(QLatin1Char('@')))
            if (const std::optional<bool> hiding = isHiding(rest.left(end)))
                addRules(selectors, *hiding);
        rest = rest.mid(std::min(end + 1, rest.size()));
    }
}

void HtmlHiding::addRules(QStringView selectors, bool isHiding) {
    static const QRegularExpression compound(QStringLiteral("^(\\*|[a-z][a-z0-9]*)?((?:[.#][\\w-]+)*)$"),
                                             QRegularExpression::CaseInsensitiveOption |
                                                 QRegularExpression::UseUnicodePropertiesOption);
    static const QRegularExpression part(QStringLiteral("([.#])([\\w-]+)"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    constexpr int ofName = 1; // in steps of what may be of the lower kind
    constexpr int ofClass = 100;
    constexpr int ofId = 10'000;
    for (const QStringView selector : selectors.split(QLatin1Char(','))) {
        const QRegularExpressionMatch match = compound.match(selector.trimmed().toString());
        if (!match.hasMatch() || match.capturedLength() == 0)
            continue;
        Rule rule;
        rule.isHiding = isHiding;
        rule.name = match.captured(1) == QLatin1String("*") ? QString() : match.captured(1).toLower();
        rule.rank = rule.name.isEmpty() ? 0 : ofName;
        for (auto found = part.globalMatch(match.captured(2)); found.hasNext();) {
            const QRegularExpressionMatch one = found.next();
            const bool isId = one.captured(1) == QLatin1String("#");
            rule.rank += isId ? ofId : ofClass;
            if (isId)
                rule.id = one.captured(2);
            else
                rule.classes.push_back(one.captured(2));
        }
        const QString key = !rule.id.isEmpty()      ? QLatin1Char('#') + rule.id
                            : !rule.classes.empty() ? QLatin1Char('.') + rule.classes.front()
                                                    : rule.name;
        rule.order = m_count++;
        constexpr std::size_t mostForKey = 100; // more is no work of a person
        if (m_rules[key].size() < mostForKey)
            m_rules[key].push_back(rule);
    }
}

bool HtmlHiding::hides(const HtmlTag& tag) const {
    if (tag.name == QLatin1String("html") || tag.name == QLatin1String("body")) // until a script shows it
        return false;
    if (tag.has(QStringLiteral("hidden")))
        return true;
    if (const std::optional<bool> hiding = isHiding(tag.attribute(QStringLiteral("style"))))
        return *hiding;
    if (m_rules.isEmpty())
        return false;
    const QStringList classes = classesOf(tag);
    const auto isMet = [&](const Rule& rule) {
        return (rule.name.isEmpty() || rule.name == tag.name) &&
               (rule.id.isEmpty() || rule.id == tag.attribute(QStringLiteral("id"))) &&
               std::all_of(rule.classes.begin(), rule.classes.end(),
                           [&classes](const QString& name) { return classes.contains(name); });
    };
    QStringList keys{QString(), tag.name, QLatin1Char('#') + tag.attribute(QStringLiteral("id"))};
    for (const QString& name : classes)
        keys << QLatin1Char('.') + name;
    const Rule* best = nullptr;
    for (const QString& key : keys) {
        const auto rules = m_rules.constFind(key);
        if (rules == m_rules.constEnd())
            continue;
        for (const Rule& rule : *rules)
            if (isMet(rule) && (!best || std::tie(rule.rank, rule.order) > std::tie(best->rank, best->order)))
                best = &rule;
    }
    return best && best->isHiding;
}
