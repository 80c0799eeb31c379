#include "TextOnlyTools.h"

#include "GraphemeClusters.h"
#include "ToolArguments.h"
#include "ToolSchema.h"

#include <QStringList>

namespace {

constexpr QLatin1String searchedArgument("query");

QString fullText(const QString& text) {
    constexpr qsizetype limit = 60'000; // user-perceived characters
    const qsizetype end = GraphemeClusters::endOfFirst(text, limit);
    if (end == text.size())
        return text;
    return text.left(end) +
           QStringLiteral("\n\n[Truncated — document is longer than fits in one call. Use search_text for anything "
                          "past this point.]");
}

QString searchText(const QString& text, const QJsonObject& input) {
    constexpr qsizetype limit = 5;
    constexpr qsizetype margin = 60; // user-perceived characters on either side of a hit
    const QString query = ToolArguments::string(input, searchedArgument).value_or(QString());
    if (query.isEmpty())
        return QStringLiteral("Missing 'query' argument.");
    const QString lowerText = text.toLower();
    const QString lowerQuery = query.toLower();
    QStringList excerpts;
    for (qsizetype hit = lowerText.indexOf(lowerQuery); hit >= 0 && excerpts.size() < limit;) {
        const qsizetype end = hit + lowerQuery.size();
        // Lower case may be longer than what it comes from: such places are off by a little, or behind the end.
        const qsizetype from = GraphemeClusters::before(text, hit, margin);
        const qsizetype to = GraphemeClusters::after(text, end, margin);
        excerpts.append(QStringLiteral("…") + text.mid(from, to - from) + QStringLiteral("…"));
        hit = lowerText.indexOf(lowerQuery, end);
    }
    return excerpts.isEmpty() ? QStringLiteral("No matches found for '%1'.").arg(query) : excerpts.join(u'\n');
}

} // namespace

std::vector<AssistantTool> TextOnlyTools::make(const TextOnlyAssistantContext& context) {
    return {
        {QStringLiteral("get_full_text"),
         QStringLiteral("Get the text Spotlight has indexed for this document "
                        "(Excel/PowerPoint/Pages/Numbers/Keynote/EPUB — not a "
                        "PDF, no page numbers)."),
         toolSchema({}), [context](const QJsonObject&) { return fullText(context.extractedText); }},
        {QStringLiteral("search_text"),
         QStringLiteral(
             "Search this document's Spotlight-indexed text for a keyword or phrase and return short excerpts."),
         toolSchema({{searchedArgument, QStringLiteral("string")}}),
         [context](const QJsonObject& input) { return searchText(context.extractedText, input); }},
    };
}
