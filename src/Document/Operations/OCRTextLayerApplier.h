#pragma once

#include <QCoroTask>
#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <stop_token>
#include <vector>

class PDFDocument;
class PDFEditorDocument;
class PDFPage;
class UndoManager;

/// Makes scanned pages searchable: each is replaced by a page that shows the same picture and holds, invisible over it,
/// the lines that were recognized there. Main thread only; drawing and recognizing are done on others.
///
/// A new page has the boxes, rotation, user unit and label of the old one, and what led to that leads to it. A page
/// that is one picture keeps that picture's own bytes; any other is drawn. Annotations become part of the picture.
///
/// Coroutines are resumed from the event loop, when the caller's own object may be gone, and dropping a task doesn't
/// stop it: who awaits one looks before it touches itself, and asks for a stop when it goes.
namespace OCRTextLayerApplier {

/// So many characters, without white space at the ends, make a page one that has text.
inline constexpr int leastCharacters = 20;
/// Pixels for a point of a page that has to be drawn; more where it shows finer images, up to `readingScale`.
inline constexpr double renderScale = 2.0;
/// Pixels for a point as the recognizer sees every page: 300 dots per inch.
inline constexpr double readingScale = 300.0 / 72;
/// For how long a page may occupy its worker before it is passed over.
inline constexpr std::chrono::milliseconds pageTimeLimit(60'000);

/// There is nothing to recognize text with; `what()` is a sentence for the user that names the missing package.
class DataMissing : public std::runtime_error {
public:
    DataMissing();
};

/// What came of one page.
struct Recognition {
    QString text;                  ///< the recognized lines, joined with "\n"; empty for a page without text
    std::shared_ptr<PDFPage> page; ///< to take the page's place; in no document
};

/// How a run over a document is watched and ended.
struct Options {
    std::stop_token stop = {};
    /// Told on the main thread which page, from 1 to `count`, is being recognized; the pages that have text aren't
    /// counted. Never called when all of them have.
    std::function<void(int page, int count)> progress = {};
    std::chrono::milliseconds limit = pageTimeLimit; ///< for each page
};

[[nodiscard]] bool pageAlreadyHasText(const PDFPage& page);

/// The places of the pages without text, ascending. Reads the text of all pages; `apply` does that on a worker.
[[nodiscard]] std::vector<int> pagesNeedingOCR(const PDFDocument& document);

/// Recognizes a page and makes the one that is to replace it, blank or not. Changes nothing. None when the page can't
/// be drawn, when `stop` is requested (within a moment), or when it takes longer than `limit`.
[[nodiscard]] QCoro::Task<std::optional<Recognition>>
recognizeAndFlatten(std::shared_ptr<PDFPage> page, std::stop_token stop = {},
                    std::chrono::milliseconds limit = pageTimeLimit);

/// Recognizes all pages that have no text yet, replaces them at the end in one undo step, and returns how many those
/// were. Pages that moved meanwhile are replaced where they are then; pages that went, that somebody changed or that
/// can't be recognized are passed over. A stop leaves the document as it is. Throws `DataMissing`.
[[nodiscard]] QCoro::Task<int> apply(PDFEditorDocument& document, UndoManager* undoManager, Options options = {});

/// The text of the page at `index`: its own, and nothing changes, when it has some; otherwise what is recognized, and
/// the page is replaced, unless it was changed meanwhile. None when there is no such page, or as above. Throws
/// `DataMissing`.
[[nodiscard]] QCoro::Task<std::optional<QString>>
applyToCurrentPage(int index, PDFEditorDocument& document, UndoManager* undoManager, std::stop_token stop = {});

} // namespace OCRTextLayerApplier
