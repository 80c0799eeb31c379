#include "OCRTextLayerApplier.h"

#include "FlowingText.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageReplacement.h"
#include "RecognitionWorkers.h"
#include "RecognizedPage.h"
#include "TextRecognizer.h"
#include "UndoManager.h"

#include <QPointer>

#include <utility>

namespace {

bool isText(const QString& string) {
    return string.trimmed().size() >= OCRTextLayerApplier::leastCharacters;
}

/// A page that has been recognized, or none, as it was before.
struct Result {
    std::shared_ptr<PDFPage> page;
    quint64 revision = 0;
    std::shared_ptr<PDFPage> replacement;
};

/// Those that are still where somebody sees them, unchanged.
std::vector<PageReplacement> replacements(const std::vector<Result>& results, const PDFDocument& document) {
    std::vector<PageReplacement> valid;
    for (const Result& result : results) {
        const int index = result.replacement ? document.index(result.page.get()) : -1;
        if (index >= 0 && result.page->revision() == result.revision)
            valid.push_back({index, result.page, result.replacement});
    }
    return valid;
}

int replace(const std::vector<Result>& results, PDFEditorDocument& document, UndoManager* undoManager) {
    std::vector<PageReplacement> valid = replacements(results, *document.pdfDocument());
    const int count = static_cast<int>(valid.size());
    PageReplacement::apply(std::move(valid), document, undoManager);
    return count;
}

/// The pages of a run, of which each worker takes the next.
struct Pages {
    OCRTextLayerApplier::Options options;
    std::vector<Result> results;
    std::size_t next = 0;
    int finished = 0;

    void tellProgress() const {
        const int count = static_cast<int>(results.size());
        if (options.progress && finished < count && !options.stop.stop_requested())
            options.progress(finished + 1, count);
    }
};

QCoro::Task<> recognizeInTurn(std::shared_ptr<Pages> pages) {
    while (pages->next < pages->results.size() && !pages->options.stop.stop_requested()) {
        const std::size_t at = pages->next++;
        const std::shared_ptr<PDFPage> page = pages->results[at].page;
        if (page->document() && page->revision() == pages->results[at].revision) {
            auto recognized =
                co_await OCRTextLayerApplier::recognizeAndFlatten(page, pages->options.stop, pages->options.limit);
            if (recognized)
                pages->results[at].replacement = recognized->page;
        }
        ++pages->finished;
        pages->tellProgress();
    }
}

// What a coroutine hands to another one and waits for stands in a variable: GCC 12 destroys some temporaries of such a
// call twice.

QCoro::Task<bool> hasData(std::stop_token stop) {
    const auto found = std::make_shared<bool>(true);
    const RecognitionWorkers::Work look = [found](const std::stop_token&) { *found = TextRecognizer::hasData(); };
    const bool looked = co_await RecognitionWorkers::run(look, stop, OCRTextLayerApplier::pageTimeLimit);
    co_return !looked || *found;
}

/// The places of those without text; reading a long document takes its time.
QCoro::Task<std::vector<int>> withoutText(std::vector<PDFPageContent> contents, std::stop_token stop) {
    constexpr std::chrono::milliseconds noLimit = std::chrono::hours(24);
    const auto found = std::make_shared<std::vector<int>>();
    const RecognitionWorkers::Work look = [found, contents](const std::stop_token& stopped) {
        for (std::size_t i = 0; i < contents.size() && !stopped.stop_requested(); ++i)
            if (!isText(FlowingText(*contents[i].source->readText(contents[i].pageNumber, stopped)).string()))
                found->push_back(static_cast<int>(i));
    };
    const bool looked = co_await RecognitionWorkers::run(look, stop, noLimit);
    co_return looked ? *found : std::vector<int>();
}

} // namespace

OCRTextLayerApplier::DataMissing::DataMissing()
    : std::runtime_error("Text can't be recognized, because no language data is installed for it. Install the package "
                         "“tesseract-ocr-eng” and try again.") {}

bool OCRTextLayerApplier::pageAlreadyHasText(const PDFPage& page) {
    return isText(page.string());
}

std::vector<int> OCRTextLayerApplier::pagesNeedingOCR(const PDFDocument& document) {
    std::vector<int> indices;
    for (int index = 0; index < document.pageCount(); ++index)
        if (const std::shared_ptr<PDFPage> page = document.page(index); page && !pageAlreadyHasText(*page))
            indices.push_back(index);
    return indices;
}

QCoro::Task<std::optional<OCRTextLayerApplier::Recognition>>
OCRTextLayerApplier::recognizeAndFlatten(std::shared_ptr<PDFPage> page, std::stop_token stop,
                                         std::chrono::milliseconds limit) {
    std::shared_ptr<RecognizedPage> recognized;
    do {
        recognized = std::make_shared<RecognizedPage>(*page);
        const RecognitionWorkers::Work draw = [recognized](const std::stop_token& stopped) {
            recognized->draw(stopped);
        };
        const bool isDrawn = co_await RecognitionWorkers::run(draw, stop, limit);
        if (!isDrawn || !recognized->isDrawn())
            co_return std::nullopt;
    } while (!recognized->noteAnnotations(*page));

    const RecognitionWorkers::Work read = [recognized](const std::stop_token& stopped) { recognized->read(stopped); };
    const bool isRead = co_await RecognitionWorkers::run(read, stop, limit);
    if (!isRead || !recognized->source())
        co_return std::nullopt;
    co_return Recognition{recognized->text(), PDFPage::replacing(*page, recognized->source())};
}

QCoro::Task<int> OCRTextLayerApplier::apply(PDFEditorDocument& document, UndoManager* undoManager, Options options) {
    const QPointer<PDFEditorDocument> open(&document);
    const QPointer<UndoManager> undo(undoManager);
    const std::shared_ptr<PDFDocument> pdf = document.pdfDocument();
    const std::stop_token stop = options.stop;

    std::vector<Result> all; // as they are now: they may move while their text is read
    for (int index = 0; index < pdf->pageCount(); ++index) {
        const std::shared_ptr<PDFPage> page = pdf->page(index);
        all.push_back({page, page->revision(), nullptr});
    }
    const std::vector<PDFPageContent> contents = pdf->pageContents();
    const std::vector<int> needed = co_await withoutText(contents, stop);
    if (needed.empty() || stop.stop_requested())
        co_return 0;
    const bool canRead = co_await hasData(stop);
    if (!canRead)
        throw DataMissing();

    const auto pages = std::make_shared<Pages>();
    pages->options = std::move(options);
    for (const int index : needed)
        pages->results.push_back(all[static_cast<std::size_t>(index)]);
    all.clear();
    pages->tellProgress();
    std::vector<QCoro::Task<>> workers;
    for (int i = 0; i < RecognitionWorkers::count(); ++i)
        workers.push_back(recognizeInTurn(pages));
    for (QCoro::Task<>& worker : workers)
        co_await worker;
    if (stop.stop_requested() || !open || open->pdfDocument() != pdf)
        co_return 0;
    co_return replace(pages->results, *open, undo);
}

QCoro::Task<std::optional<QString>> OCRTextLayerApplier::applyToCurrentPage(int index, PDFEditorDocument& document,
                                                                            UndoManager* undoManager,
                                                                            std::stop_token stop) {
    const QPointer<PDFEditorDocument> open(&document);
    const QPointer<UndoManager> undo(undoManager);
    const std::shared_ptr<PDFPage> page = document.pdfDocument()->page(index);
    if (!page)
        co_return std::nullopt;
    const std::vector<PDFPageContent> contents{page->content()};
    const std::vector<int> needed = co_await withoutText(contents, stop);
    if (stop.stop_requested())
        co_return std::nullopt;
    if (needed.empty())
        co_return page->string().trimmed();
    const bool canRead = co_await hasData(stop);
    if (!canRead)
        throw DataMissing();
    const quint64 revision = page->revision();
    const auto recognized = co_await recognizeAndFlatten(page, stop);
    if (!recognized || stop.stop_requested())
        co_return std::nullopt;
    if (open)
        replace({{page, revision, recognized->page}}, *open, undo);
    co_return recognized->text;
}
