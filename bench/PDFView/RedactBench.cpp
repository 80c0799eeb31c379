// redact_bench FILE.pdf [RUNS]
//
// Marks a word on a page of a file, in the middle of it, and burns it in as the end of a drag does. Prints a JSON
// object for each: for the search for markers that goes before, beside the window, for the first time, and for the
// median of RUNS (5) more.

#include "Measurement.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "RedactionApplier.h"
#include "RedactionMarkerAnnotation.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr double aim = 400; // milliseconds

double redact(PDFEditorDocument& document, int index) {
    const std::shared_ptr<PDFPage> page = document.pdfDocument()->page(index);
    const auto marker = std::make_shared<RedactionMarkerAnnotation>(QRectF(100, 500, 120, 14));
    marker->setContents(RedactionMarkerAnnotation::marker);
    page->addAnnotation(marker);
    QElapsedTimer clock;
    clock.start();
    if (RedactionApplier::apply(document, document.undoManager().get()) != 1)
        std::exit(1);
    return Measurement::milliseconds(clock.nsecsElapsed());
}

void print(const char* job, double milliseconds) {
    std::printf("{\"job\": \"%s\", \"ms\": %.0f, \"aim\": \"<= %.0f ms\", \"to_aim\": %.0f}\n", job, milliseconds, aim,
                milliseconds - aim);
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    const auto document = std::make_shared<PDFEditorDocument>();
    document->setPdfDocument(PDFDocument::fromFile(arguments[1]));
    const int middle = document->pdfDocument()->pageCount() / 2;
    QElapsedTimer clock;
    clock.start();
    for (const std::shared_ptr<PDFSource>& file : RedactionApplier::unsearchedFiles(*document->pdfDocument()))
        RedactionApplier::search(*file, {});
    std::printf("{\"job\": \"search\", \"ms\": %.0f}\n", Measurement::milliseconds(clock.nsecsElapsed()));
    print("redact-first", redact(*document, middle));
    std::vector<double> more;
    for (int run = 1; run <= std::max(1, arguments.value(2, QStringLiteral("5")).toInt()); ++run)
        more.push_back(redact(*document, (middle + run) % document->pdfDocument()->pageCount()));
    print("redact", Measurement::percentile(more, 0.5));
}
