#include "HtmlTag.h"

#include <algorithm>

namespace {

bool isSpace(QChar character) {
    return character == QLatin1Char(' ') || (character >= QLatin1Char('\t') && character <= QLatin1Char('\r'));
}

bool isLetter(QChar character) {
    return (character >= QLatin1Char('a') && character <= QLatin1Char('z')) ||
           (character >= QLatin1Char('A') && character <= QLatin1Char('Z'));
}

void skipSpaces(QStringView& text) {
    while (!text.isEmpty() && isSpace(text.front()))
        text = text.mid(1);
}

/// Takes what is in front of the first character for which `isEnd` holds.
template <typename IsEnd>
QStringView take(QStringView& text, IsEnd isEnd) {
    const auto end = std::find_if(text.begin(), text.end(), isEnd);
    const QStringView taken = text.left(end - text.begin());
    text = text.mid(taken.size());
    return taken;
}

QStringView takeValue(QStringView& text) {
    skipSpaces(text);
    if (text.isEmpty())
        return {};
    const QChar quote = text.front();
    if (quote != QLatin1Char('"') && quote != QLatin1Char('\''))
        return take(text, [](QChar c) { return isSpace(c) || c == QLatin1Char('>'); });
    text = text.mid(1);
    const QStringView value = take(text, [quote](QChar c) { return c == quote; });
    text = text.mid(std::min<qsizetype>(1, text.size()));
    return value;
}

} // namespace

std::optional<HtmlTag> HtmlTag::read(QStringView& html) {
    QStringView rest = html.mid(1);
    HtmlTag tag;
    tag.isEnd = rest.startsWith(QLatin1Char('/'));
    if (tag.isEnd)
        rest = rest.mid(1);
    if (rest.isEmpty() || !isLetter(rest.front()))
        return std::nullopt;
    const auto endsName = [](QChar c) { return isSpace(c) || c == QLatin1Char('/') || c == QLatin1Char('>'); };
    tag.name = take(rest, endsName).toString().toLower();
    constexpr std::size_t mostAttributes = 100; // the rest is no work of a person
    while (true) {
        take(rest, [](QChar c) { return !isSpace(c) && c != QLatin1Char('/'); });
        if (rest.isEmpty() || rest.front() == QLatin1Char('>'))
            break;
        const QStringView start = rest;
        rest = rest.mid(1); // whatever it is, a "=" too
        take(rest, [&endsName](QChar c) { return endsName(c) || c == QLatin1Char('='); });
        const QString name = start.left(start.size() - rest.size()).toString().toLower();
        skipSpaces(rest);
        QString value;
        if (rest.startsWith(QLatin1Char('='))) {
            rest = rest.mid(1);
            value = takeValue(rest).toString();
        }
        if (tag.attributes.size() < mostAttributes && !tag.has(name))
            tag.attributes.emplace_back(name, value);
    }
    html = rest.mid(std::min<qsizetype>(1, rest.size()));
    return tag;
}

QString HtmlTag::attribute(const QString& attributeName) const {
    for (const auto& [key, value] : attributes)
        if (key == attributeName)
            return value;
    return {};
}

bool HtmlTag::has(const QString& attributeName) const {
    return std::any_of(attributes.begin(), attributes.end(),
                       [&attributeName](const auto& attribute) { return attribute.first == attributeName; });
}

void HtmlTag::set(const QString& attributeName, const QString& value) {
    for (auto& [key, old] : attributes)
        if (key == attributeName) {
            old = value;
            return;
        }
    attributes.emplace_back(attributeName, value);
}

QString HtmlTag::written() const {
    QString tag = (isEnd ? QStringLiteral("</") : QStringLiteral("<")) + name;
    for (const auto& [attributeName, value] : attributes) {
        QString quoted = value;
        tag += QLatin1Char(' ') + attributeName + QStringLiteral("=\"") +
               quoted.replace(QLatin1Char('"'), QStringLiteral("&quot;")) + QLatin1Char('"');
    }
    return tag + QLatin1Char('>');
}
