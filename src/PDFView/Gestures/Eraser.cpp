#include "Eraser.h"

#include "AnnotatingPDFView.h"
#include "AnnotationUndo.h"
#include "InkPath.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int samplesPerCurve = 12;
/// Page units. Each piece of a stroke has its samples for points: without a limit, cutting the same stroke over and
/// over would make them twelve times as many each time.
constexpr double finestSpacing = 0.05;
constexpr double radiusWithoutState = 10; // page units
constexpr double smallestRadius = 1;

/// What is left of a stroke, as runs of at least two points each, in page coordinates.
struct Remains {
    std::vector<std::vector<QPointF>> runs;
    bool lostPoints = false;
};

void addRemains(Remains& remains, const std::vector<QPointF>& points, QPointF origin, QPointF center, double radius) {
    std::vector<QPointF> run;
    const auto closeRun = [&] {
        if (run.size() >= 2)
            remains.runs.push_back(run);
        run.clear();
    };
    for (const QPointF& point : points) {
        const QPointF onPage = point + origin;
        if (std::hypot(onPage.x() - center.x(), onPage.y() - center.y()) <= radius) {
            remains.lostPoints = true;
            closeRun();
        } else {
            run.push_back(onPage);
        }
    }
    closeRun();
}

} // namespace

Eraser::Eraser(AnnotatingPDFView& view) : m_view(view) {}

Eraser::~Eraser() {
    finish();
}

void Eraser::finish() {
    if (const auto undoManager = std::exchange(m_grouped, {}).lock())
        undoManager->endUndoGrouping();
}

void Eraser::eraseAnnotation(QPointF viewPoint) {
    const std::shared_ptr<PDFPage> page = m_view.pageAt(viewPoint, true);
    if (!page)
        return;
    const std::shared_ptr<ToolState>& state = m_view.toolState();
    const Circle circle{m_view.convertToPage(viewPoint, *page),
                        state ? std::max(state->eraserSize() * 0.5, smallestRadius) : radiusWithoutState};
    const bool isPrecise = state && state->eraserMode() == EraserMode::precise;
    const auto before = page->annotations(); // the pieces of a stroke are not looked at again
    for (const std::shared_ptr<PDFAnnotation>& annotation : before) {
        if (!isTouched(annotation, circle))
            continue;
        if (isPrecise && annotation->type() == PDFAnnotationSubtype::ink)
            splitInkAnnotation(annotation, page, circle);
        else
            remove(annotation, page);
    }
}

bool Eraser::isTouched(const std::shared_ptr<PDFAnnotation>& annotation, const Circle& circle) {
    const double r = circle.radius;
    if (!annotation->bounds().adjusted(-r, -r, r, r).contains(circle.center))
        return false;
    if (!annotation->coversPage())
        return true;
    const int side = int(std::ceil(2 * r)); // pixels, of a picture of what is beneath the eraser
    QImage picture(side, side, QImage::Format_Alpha8);
    picture.fill(0);
    QPainter painter(&picture);
    QPainterPath touched;
    touched.addEllipse(picture.rect());
    painter.setClipPath(touched);
    painter.translate(side / 2.0, side / 2.0);
    painter.scale(1, -1);
    painter.translate(-circle.center);
    PDFAnnotation::drawAll({&annotation, 1}, PDFDisplayBox::cropBox, painter);
    painter.end();
    for (int y = 0; y < side; ++y)
        if (const uchar* row = picture.constScanLine(y); std::any_of(row, row + side, [](uchar a) { return a > 0; }))
            return true;
    return false;
}

void Eraser::splitInkAnnotation(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page,
                                const Circle& circle) {
    Remains remains;
    for (const QPainterPath& path : annotation->paths())
        addRemains(remains, InkPath::flattenedPoints(path, samplesPerCurve, finestSpacing),
                   annotation->bounds().topLeft(), circle.center, circle.radius);
    if (!remains.lostPoints)
        return;
    const std::shared_ptr<ToolState>& state = m_view.toolState();
    const double width = annotation->border() ? annotation->border()->lineWidth : state->lineWidth();
    const QColor color = annotation->color().value_or(state->color());
    remove(annotation, page);
    for (const std::vector<QPointF>& run : remains.runs) {
        const auto piece = InkPath::inkAnnotation(run, color, width);
        piece->setProvenance(*annotation);
        page->addAnnotation(piece);
        AnnotationUndo::registerAdding(m_view.docUndoManager().get(), page, piece);
    }
}

void Eraser::remove(const std::shared_ptr<PDFAnnotation>& annotation, const std::shared_ptr<PDFPage>& page) {
    const std::shared_ptr<UndoManager>& undoManager = m_view.docUndoManager();
    if (undoManager && m_grouped.expired()) {
        undoManager->beginUndoGrouping();
        m_grouped = undoManager;
    }
    const int index = page->removeAnnotation(annotation);
    AnnotationUndo::registerRemoving(undoManager.get(), page, annotation, index);
}
