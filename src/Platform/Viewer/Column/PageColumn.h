#pragma once

#include "PDFTypes.h"
#include "PageLayout.h"
#include "PageShapes.h"
#include "PlacedPage.h"
#include "ViewScroller.h"

#include <QObject>
#include <QTransform>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class PDFDocument;
class PDFPage;

/// The pages of a document as they lie in the view: the column, its scale, and the window on it. Whatever changes, the
/// reader keeps his place. Main thread only.
///
/// View points are device-independent pixels of the viewport; "device" results are device pixels of the viewport.
class PageColumn : public QObject {
    Q_OBJECT

public:
    PageColumn(QScrollBar& horizontal, QScrollBar& vertical, QObject* parent = nullptr);

    /// Shows the document from its start; null shows nothing.
    void setDocument(std::shared_ptr<PDFDocument> document);
    [[nodiscard]] const std::shared_ptr<PDFDocument>& document() const { return m_document; }
    /// The list of pages changed. It is read again by the next `update`, so that many changes cost one layout.
    void setStale() { m_stale = true; }
    /// To be called before anything else here after a change of the document may have happened.
    void update();
    /// The page was changed, perhaps turned.
    void refreshPage(const PDFPage* page);

    /// `size` in device-independent pixels.
    void setViewport(QSize size, double devicePixelRatio);
    /// In device-independent pixels.
    [[nodiscard]] QSize viewport() const { return m_viewport; }
    [[nodiscard]] double devicePixelRatio() const { return m_ratio; }
    [[nodiscard]] PDFDisplayBox displayBox() const { return m_box; }
    void setDisplayBox(PDFDisplayBox box);
    [[nodiscard]] bool hasPageBreaks() const { return m_pageBreaks; }
    void setPageBreaks(bool breaks);

    // Scale: device-independent pixels for a point

    [[nodiscard]] double scaleFactor() const { return m_scale; }
    /// The point of the page at `viewPoint` stays there as far as the ends of the column allow.
    void setScaleFactor(double scale, QPointF viewPoint);
    /// With which the current page fills the width of the view, but no more than the limit. 1 without pages.
    [[nodiscard]] double scaleToFitWidth() const;
    void setMaxScale(double scale) { m_maxScale = scale; }
    [[nodiscard]] bool fitsWidth() const { return m_fitsWidth; }
    /// Fits the current page, and the same width when the view changes: which page is read then plays no part.
    void setFitsWidth(bool fits);

    // Pages

    [[nodiscard]] int pageCount() const { return m_shapes.count(); }
    /// The page that takes the most of the window, or the one last gone to while it is in sight; -1 without pages.
    [[nodiscard]] int currentPage() const;
    /// Half-open: [first, last).
    [[nodiscard]] std::pair<int, int> visiblePages() const;
    /// In device pixels of the view; far outside of it for most pages.
    [[nodiscard]] QRectF pageRect(int index) const;
    /// -1 when there is no page there; with `nearest`, only when there are no pages.
    [[nodiscard]] int pageAt(QPointF viewPoint, bool nearest) const;
    /// Gives a page out of sight its real size now, so that what is computed for it holds.
    void makeKnown(int index);
    /// Page coordinates to view points.
    [[nodiscard]] QTransform pageToView(int index) const;
    /// The pages [first, last) for drawing, clamped to the document.
    [[nodiscard]] std::vector<PlacedPage> placedPages(int first, int last) const;

    // Places

    /// A spot that stays what it is while pages are scaled, moved or turned.
    struct Place {
        std::weak_ptr<PDFPage> page;
        int index = 0;  ///< where the page was, for when it is gone
        QPointF point;  ///< on the page as shown, points from its upper left corner
        QPointF beyond; ///< outside of the page by this much, device-independent pixels
    };
    /// None without pages.
    [[nodiscard]] std::optional<Place> placeAt(QPointF viewPoint) const;
    /// Brings the place to `viewPoint` as far as the ends of the column allow.
    void bringTo(const Place& place, QPointF viewPoint);
    /// Brings the upper edge of a page to the top of the view and makes it the current page. The page is centred from
    /// side to side.
    void goToPage(int index);
    /// Brings the lower edge of a page to the bottom of the view.
    void goToPageEnd(int index);
    /// Brings a point of a page, in page coordinates, to the upper left of the view; without one of them that
    /// coordinate is the page's edge or stays. The page becomes the current one.
    void goToPoint(int index, std::optional<double> x, std::optional<double> y);
    /// Scrolls by as little as brings the rectangle (page coordinates) into the window.
    void reveal(int index, const QRectF& rect);

    [[nodiscard]] ViewScroller& scroller() { return m_scroller; }
    [[nodiscard]] const ViewScroller& scroller() const { return m_scroller; }

Q_SIGNALS:
    /// Something moved on the screen: by scrolling, scaling or a new layout.
    void moved();
    void scaleChanged();

private:
    struct Anchor {
        Place place;
        double height; // in the view, device-independent pixels
    };
    [[nodiscard]] std::optional<Anchor> anchor() const;
    void restore(const std::optional<Anchor>& anchor);
    /// Runs a change of what the layout follows from, and lays out anew around the reader's place.
    template <typename Change>
    void changeInPlace(Change&& change);
    void layOut();
    void settle();
    bool know(int index);
    void tellMoved();
    void setScale(double scale);
    void fitCurrentPage();
    void fitAgain();
    [[nodiscard]] double scaleToFit(double pageWidth) const;
    void scrollTo(QPointF devicePosition, QPointF viewPoint, bool keepsGliding);
    [[nodiscard]] int indexOf(const Place& place) const;
    [[nodiscard]] QPointF devicePosition(const Place& place) const;
    [[nodiscard]] QSizeF viewSize() const;

    std::shared_ptr<PDFDocument> m_document;
    PageShapes m_shapes;
    PageLayout m_layout;
    ViewScroller m_scroller;
    PDFDisplayBox m_box = PDFDisplayBox::cropBox;
    QSize m_viewport;
    double m_ratio = 1;
    double m_scale = 1;
    double m_maxScale = 16;
    bool m_fitsWidth = false;
    double m_fittedWidth = 0; // points
    bool m_pageBreaks = true;
    bool m_stale = false;
    std::optional<Anchor> m_anchor; // as of the last move
    std::weak_ptr<PDFPage> m_goneTo;
    std::optional<Place> m_zoomPlace; // of the last zoom, so that rounding doesn't add up over a pinch
    QPointF m_zoomPoint;
};
