// annotate_bench
//
// Draws a stroke of 10,000 points, erases across a page of 2,000 annotations in both modes (made in the program, and
// read from a file), and scrolls over such a page, all with real events in a shown window. Prints one JSON object for
// each about what an event took of the main thread, its painting included. The exit code tells only whether the
// measuring was possible.

#include "InkPath.h"
#include "MeasuredWindow.h"
#include "PDFAnnotation.h"

#include <QImage>
#include <QMouseEvent>
#include <QScrollBar>

#include <cmath>
#include <random>

using namespace Measurement;

namespace {

constexpr int strokePoints = 10'000;
constexpr int annotationCount = 2'000;
constexpr double medianAim = 4;
constexpr double p99Aim = 16;
constexpr QSizeF pageSize{612, 792};

std::shared_ptr<PDFDocument> blankDocument() {
    QImage paper(8, 8, QImage::Format_RGB32);
    paper.fill(Qt::white);
    auto document = std::make_shared<PDFDocument>();
    for (int i = 0; i < 3; ++i)
        document->insert(PDFPage::fromImage(paper, pageSize), i);
    return document;
}

/// Short strokes all over the page, as handwriting.
void fill(PDFPage& page) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> across(20, pageSize.width() - 40);
    std::uniform_real_distribution<double> up(20, pageSize.height() - 30);
    std::uniform_real_distribution<double> step(-4, 6);
    for (int i = 0; i < annotationCount; ++i) {
        std::vector<QPointF> points{{across(random), up(random)}};
        for (int n = 0; n < 12; ++n)
            points.push_back(points.back() + QPointF(step(random), step(random)));
        page.addAnnotation(InkPath::inkAnnotation(points, Qt::darkBlue, 1));
    }
}

class Window : public MeasuredWindow {
public:
    using MeasuredWindow::MeasuredWindow;

    [[nodiscard]] PDFPage& page() const { return *MeasuredWindow::page(0); }

    void mouse(QEvent::Type type, QPointF point, Qt::MouseButton button, Qt::MouseButtons buttons) {
        const QPointF at = view().convertFromPage(point, page());
        QMouseEvent event(type, at, view().viewport()->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(view().viewport(), &event);
    }

    /// Presses at the first point, moves through the others and lets go; measures each move until it is painted.
    void drag(const std::vector<QPointF>& points) {
        mouse(QEvent::MouseButtonPress, points.front(), Qt::LeftButton, Qt::LeftButton);
        QApplication::processEvents();
        for (std::size_t i = 1; i < points.size(); ++i)
            measure([&] { mouse(QEvent::MouseMove, points[i], Qt::NoButton, Qt::LeftButton); });
        mouse(QEvent::MouseButtonRelease, points.back(), Qt::LeftButton, Qt::NoButton);
        settle();
    }

    void report(const char* job, int annotationsBefore) {
        const double toAim = std::max(percentile(wall(), 0.5) - medianAim, percentile(wall(), 0.99) - p99Aim);
        print(job, {{QStringLiteral("annotations_before"), annotationsBefore},
                    {QStringLiteral("annotations_after"), int(page().annotations().size())},
                    {QStringLiteral("aim"), QStringLiteral("p50_ms < %1, p99_ms < %2").arg(medianAim).arg(p99Aim)},
                    {QStringLiteral("to_aim"), rounded(toAim)}});
    }
};

void drawStroke() {
    Window window(blankDocument());
    window.tools().setTool(AnnotationTool::ink);
    window.tools().setLineWidth(2);
    std::vector<QPointF> points;
    for (int i = 0; i < strokePoints; ++i) {
        const double turn = i * 0.05;
        const double radius = 40 + 230 * std::fabs(std::sin(i * 0.0007));
        points.emplace_back(306 + radius * std::cos(turn), 480 + radius * std::sin(turn) * 0.8);
    }
    window.drag(points);
    window.report("draw-stroke-10000", 0);
}

void erase(const char* job, const std::shared_ptr<PDFDocument>& document, EraserMode mode) {
    Window window(document);
    const int before = int(window.page().annotations().size());
    window.tools().setTool(AnnotationTool::eraser);
    window.tools().setEraserMode(mode);
    std::vector<QPointF> points;
    for (int i = 0; i < 600; ++i)
        points.emplace_back(30 + (i % 100) * 5.5, 770 - (i / 100) * 60);
    window.drag(points);
    window.report(job, before);
}

void scroll(const std::shared_ptr<PDFDocument>& document) {
    Window window(document);
    QScrollBar& bar = *window.view().verticalScrollBar();
    for (int pass = 0; pass < 4; ++pass) {
        for (int i = 0; i < 100; ++i)
            window.measure([&] { bar.setValue((pass % 2 == 0 ? i : 100 - i) * 9); });
    }
    window.report("scroll-2000-annotations", int(window.page().annotations().size()));
}

std::shared_ptr<PDFDocument> filledDocument() {
    auto document = blankDocument();
    fill(*document->page(0));
    return document;
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    drawStroke();
    erase("erase-2000-new", filledDocument(), EraserMode::wholeStroke);
    erase("split-2000-new", filledDocument(), EraserMode::precise);
    const QByteArray file = filledDocument()->dataRepresentation();
    erase("erase-2000-in-file", PDFDocument::fromData(file), EraserMode::wholeStroke);
    erase("split-2000-in-file", PDFDocument::fromData(file), EraserMode::precise);
    scroll(filledDocument());
    return 0;
}
