#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class DocumentText;
class PDFDocument;
class PDFOutline;

/// Finds text and sections in a document. There is no index that could be out of date: every call looks at the document
/// as it is.
namespace DocumentIndex {

struct SearchMatch {
    int page = 0;    ///< 1-based
    QString excerpt; ///< the hit with up to 40 characters on either side, on one line

    bool operator==(const SearchMatch&) const = default;
};

struct OutlineEntry {
    QString title; ///< the item's label as it stands
    std::shared_ptr<PDFOutline> outline;
};

/// The first hit on each of the first `limit` pages that have one; upper and lower case don't count. No page behind the
/// last of these is read. Nothing for an empty query. A word that is nowhere takes about a millisecond a page.
[[nodiscard]] std::vector<SearchMatch> search(const PDFDocument& document, const QString& query, int limit);
/// The same on any thread; ends early when the text says that nobody waits.
[[nodiscard]] std::vector<SearchMatch> search(const DocumentText& text, const QString& query, int limit);

/// The items of the outline, parents before their children, without those whose label is blank. Main thread.
[[nodiscard]] std::vector<OutlineEntry> flattenedOutline(const PDFDocument& document);

/// The entry that has the query as its title, else the first whose title holds the query or is held by it, else the
/// first of those that share the most words with it. Upper and lower case don't count. None when not a word is shared.
[[nodiscard]] std::optional<OutlineEntry> bestMatch(const QString& query, const std::vector<OutlineEntry>& entries);

} // namespace DocumentIndex
