#include "DocumentIndex.h"

#include "DocumentText.h"
#include "GraphemeClusters.h"
#include "PDFDocument.h"
#include "PDFOutline.h"

#include <QSet>
#include <QStringMatcher>

#include <algorithm>

namespace {

constexpr qsizetype excerptMargin = 40; // user-perceived characters on either side of a hit

QString excerptAround(const QString& text, qsizetype start, qsizetype end) {
    const qsizetype from = GraphemeClusters::before(text, start, excerptMargin);
    const qsizetype to = GraphemeClusters::after(text, end, excerptMargin);
    return text.mid(from, to - from).replace(u'\n', u' ');
}

bool isBlank(QChar character) {
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

/// Without blanks and tabs at its ends; newlines stay.
QStringView withoutBlankEnds(QStringView text) {
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

QSet<QString> words(const QString& text) {
    const QStringList pieces = text.split(u' ', Qt::SkipEmptyParts);
    return {pieces.begin(), pieces.end()};
}

} // namespace

std::vector<DocumentIndex::SearchMatch> DocumentIndex::search(const PDFDocument& document, const QString& query,
                                                              int limit) {
    return search(DocumentText(document), query, limit);
}

std::vector<DocumentIndex::SearchMatch> DocumentIndex::search(const DocumentText& text, const QString& query,
                                                              int limit) {
    std::vector<SearchMatch> matches;
    if (query.isEmpty())
        return matches;
    const QStringMatcher matcher(query, Qt::CaseInsensitive);
    for (int i = 0; i < text.pageCount() && static_cast<int>(matches.size()) < limit && !text.isStopped(); ++i) {
        const QString page = text.string(i);
        const qsizetype hit = matcher.indexIn(page);
        if (hit >= 0)
            matches.push_back({i + 1, excerptAround(page, hit, hit + query.size())});
    }
    return matches;
}

std::vector<DocumentIndex::OutlineEntry> DocumentIndex::flattenedOutline(const PDFDocument& document) {
    std::vector<OutlineEntry> entries;
    std::vector<std::shared_ptr<PDFOutline>> toVisit; // the next one last
    const auto visitChildren = [&toVisit](const PDFOutline& parent) {
        for (int i = parent.numberOfChildren() - 1; i >= 0; --i)
            toVisit.push_back(parent.child(i));
    };
    if (const auto root = document.outlineRoot())
        visitChildren(*root);
    while (!toVisit.empty()) {
        const std::shared_ptr<PDFOutline> item = toVisit.back();
        toVisit.pop_back();
        if (!withoutBlankEnds(item->label()).isEmpty())
            entries.push_back({item->label(), item});
        visitChildren(*item);
    }
    return entries;
}

std::optional<DocumentIndex::OutlineEntry> DocumentIndex::bestMatch(const QString& query,
                                                                    const std::vector<OutlineEntry>& entries) {
    const QString wanted = withoutBlankEnds(query.toLower()).toString();
    if (wanted.isEmpty())
        return std::nullopt;

    for (const OutlineEntry& entry : entries)
        if (entry.title.toLower() == wanted)
            return entry;

    for (const OutlineEntry& entry : entries) {
        const QString title = entry.title.toLower();
        if (title.contains(wanted) || wanted.contains(title))
            return entry;
    }

    const QSet<QString> wantedWords = words(wanted);
    const OutlineEntry* best = nullptr;
    qsizetype bestScore = 0;
    for (const OutlineEntry& entry : entries) {
        const qsizetype score = words(entry.title.toLower()).intersect(wantedWords).size();
        if (score > bestScore) {
            best = &entry;
            bestScore = score;
        }
    }
    return best ? std::optional(*best) : std::nullopt;
}
