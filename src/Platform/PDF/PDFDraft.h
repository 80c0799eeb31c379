#pragma once

#include <algorithm>
#include <memory>
#include <vector>

class PDFAnnotation;
class PDFPage;

/// What stands in the editors over the pages of a document and hasn't been put into it yet, so that the document can be
/// written as if it had. Main thread only.
struct PDFDraft {
    struct Change {
        std::shared_ptr<PDFPage> page;
        /// Of the page, in whose place the other comes; null when that comes on top.
        std::shared_ptr<PDFAnnotation> present;
        /// On no page; whoever writes the draft takes it. Null where the present one would go.
        std::shared_ptr<PDFAnnotation> drafted;
    };
    std::vector<Change> changes;

    /// False when all that it does is take away what an open editor has put on its page for itself.
    [[nodiscard]] bool holdsWords() const {
        return std::any_of(changes.begin(), changes.end(), [](const Change& change) { return change.drafted; });
    }
};
