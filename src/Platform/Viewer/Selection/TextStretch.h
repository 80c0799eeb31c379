#pragma once

#include <memory>
#include <optional>

class PDFPage;

/// A run of text from a place on one page to a place on the same or a later page. Nothing of the pages between needs to
/// be read to hold it, however many they are. Offsets as in `PageText`.
struct TextStretch {
    std::shared_ptr<PDFPage> firstPage;
    int start = 0;
    std::shared_ptr<PDFPage> lastPage;
    std::optional<int> end; ///< one past the last offset; none for the end of the page

    bool operator==(const TextStretch&) const = default;
};
