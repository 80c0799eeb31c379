#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>

#include <memory>

class AnnotatingPDFView;
class PDFPage;
class SignatureAnnotation;

/// A press or drag that places the active signature: where the press was is the upper left corner, and the drag gives
/// the width; the height follows from the picture. A click places the default width. Main thread only.
class SignaturePlacement {
public:
    /// `view` must outlive the placement and have a tool state.
    explicit SignaturePlacement(AnnotatingPDFView& view);
    ~SignaturePlacement();
    SignaturePlacement(const SignaturePlacement&) = delete;
    SignaturePlacement& operator=(const SignaturePlacement&) = delete;

    [[nodiscard]] bool isRunning() const { return m_currentAnnotation != nullptr; }
    /// Nothing begins without an active signature or without a page.
    void begin(QPointF viewPoint);
    void moveTo(QPointF viewPoint);
    void finish();
    void cancel();

private:
    void clear();
    // On the page as it is seen: points from its upper left corner, y down.
    [[nodiscard]] QPointF seenPoint(QPointF viewPoint) const;
    /// The bounds, in page coordinates, of a signature of that width below the start.
    [[nodiscard]] QRectF boundsFrom(double left, double width) const;

    AnnotatingPDFView& m_view;
    std::shared_ptr<PDFPage> m_dragPage;
    QPointF m_start;    // as the points above
    double m_ratio = 1; // height to width
    std::shared_ptr<SignatureAnnotation> m_currentAnnotation;
};
