#pragma once

#include <QAbstractScrollArea>
#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <memory>
#include <optional>

class PDFAnnotation;
class PDFDocument;
class PDFPage;

/// The scroll area over a column of pages, as editors that lie on the pages and fingers that move them need it: where
/// pages are, and how to bring them elsewhere. Main thread only.
///
/// A "view point" is a point of `viewport()` in device-independent pixels, as its mouse events carry it. A widget that
/// lies over the pages is a child of `viewport()` and follows `visibleAreaChanged`. Page coordinates are those of
/// `PDFPage`: points, y up, not turned.
class PageSurface : public QAbstractScrollArea {
    Q_OBJECT

public:
    ~PageSurface() override;

    /// Null while it shows none.
    [[nodiscard]] virtual std::shared_ptr<PDFDocument> document() const = 0;
    /// 1 shows a point (1/72 inch) as one device-independent pixel.
    [[nodiscard]] virtual double scaleFactor() const = 0;
    /// Scales by `factor` so that what lies at `viewPoint` stays there.
    virtual void zoomAt(QPointF viewPoint, double factor) = 0;
    /// Scrolls by as little as brings an annotation of the document into sight, not at all when it is there.
    virtual void reveal(const PDFAnnotation& annotation) = 0;
    /// True while one finger on the screen does what the mouse does, and doesn't scroll.
    [[nodiscard]] virtual bool fingerDraws() const { return false; }

    /// The page at a view point; with `nearest` also for a point beside the pages. Null when there is none.
    [[nodiscard]] virtual std::shared_ptr<PDFPage> pageAt(QPointF viewPoint, bool nearest) const = 0;
    /// Between view points and page coordinates. The page is one of the document; others give a null point or
    /// rectangle.
    [[nodiscard]] QPointF convertToPage(QPointF viewPoint, const PDFPage& page) const;
    [[nodiscard]] QRectF convertToPage(const QRectF& viewRect, const PDFPage& page) const;
    [[nodiscard]] QPointF convertFromPage(QPointF pagePoint, const PDFPage& page) const;
    [[nodiscard]] QRectF convertFromPage(const QRectF& pageRect, const PDFPage& page) const;

Q_SIGNALS:
    /// What lies in the view moved, by scrolling, zooming or a new layout.
    void visibleAreaChanged();

protected:
    explicit PageSurface(QWidget* parent);

    /// Page coordinates to view points; none for a page of another document.
    [[nodiscard]] virtual std::optional<QTransform> pageToView(const PDFPage& page) const = 0;
};
