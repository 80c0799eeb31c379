#pragma once

#include <QString>
#include <QStringView>

#include <optional>
#include <vector>

class QUrl;

/// Pages of the document that a reply names: "page 12", "Pages 3, 5 and 7", "pp. 3–5". Numbers count from 1, as in what
/// the model is told of the document. Any thread.
namespace PageLinks {

/// The part of a text that names one page, in UTF-16 code units.
struct Mention {
    qsizetype start;
    qsizetype end;
    int page;

    bool operator==(const Mention&) const = default;
};

/// Those of a document with that many pages, in order; of several numbers behind one word each is a mention. The time
/// grows with the length of the text.
[[nodiscard]] std::vector<Mention> find(QStringView text, int pageCount);

/// The address of a link within a reply that leads to a page.
[[nodiscard]] QString address(int page);
/// Where such an address leads; none for another one.
[[nodiscard]] std::optional<int> page(const QUrl& address);

} // namespace PageLinks
