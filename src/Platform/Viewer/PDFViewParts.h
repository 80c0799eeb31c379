#pragma once

#include "FocusOrder.h"
#include "FormFiller.h"
#include "JumpHistory.h"
#include "LinkNavigator.h"
#include "PDFView.h"
#include "PDFViewCommands.h"
#include "PageColumn.h"
#include "PagePainter.h"
#include "PageTexts.h"
#include "PageTiles.h"
#include "RemarkNavigator.h"
#include "RemarkPanel.h"
#include "SelectionDrag.h"
#include "TouchNavigation.h"
#include "ViewSelection.h"

#include <QColor>
#include <QTimer>

#include <memory>
#include <optional>

class PDFAnnotation;

/// What a view is made of, and how its parts hear of each other.
struct PDFViewParts {
    explicit PDFViewParts(PDFView& owner);

    /// The column after all changes of the document so far.
    PageColumn& column();
    /// The view in device pixels.
    [[nodiscard]] QRectF deviceView() const;
    /// The pages in sight; with `around` also those on either side for which pictures are wanted.
    [[nodiscard]] std::vector<PlacedPage> pages(bool around) const;

    void showDocument(const std::shared_ptr<PDFDocument>& document);
    void updateViewport();
    /// Sends the threads after what is missing on the screen and around it.
    void plan();
    /// Runs a jump and notes in the history where it came from.
    template <typename Jump>
    void jump(Jump&& go) {
        const auto left = column().placeAt({0, 0});
        const QPointF before = columnOfPages.scroller().offset();
        go();
        if (left && columnOfPages.scroller().offset() != before) {
            history.record(*left);
            Q_EMIT view.historyChanged();
        }
    }
    /// Within the limits of the view.
    void zoomTo(double scale, QPointF viewPoint);
    void keepScaleWithinLimits();
    /// True until a moment after the last move.
    [[nodiscard]] bool isMoving() const { return m_rest.isActive(); }
    void bringBack(const std::optional<JumpHistory::Place>& place);
    void follow(const PDFAnnotation& link);
    /// Opens the panel with what an annotation says, beside it, or where `near` (a view point) is on a large shape.
    void read(const RemarkNavigator::Place& remark, const std::optional<QPointF>& near);
    /// At the pointer; false when there is nothing to say.
    bool showRemarkTip(QPoint viewPoint, QPoint globalPoint);
    /// Says in words, for a screen reader, what the keyboard is on: a link, a field, an annotation, or else the page.
    void describe();
    /// The Tab key: gives the keyboard to the next or previous link, field or annotation with
    /// words. False when there is none.
    bool moveFocus(bool forward);
    /// No link, field or annotation has the keyboard any more.
    void leaveFocus();

    PDFView& view;
    PageColumn columnOfPages;
    PageTiles tiles;
    PagePainter painter;
    PageTexts texts;
    ViewSelection selection;
    SelectionDrag drag;
    LinkNavigator links;
    RemarkNavigator remarks;
    FormFiller forms;
    RemarkPanel* const remarkPanel; // the view's
    FocusOrder focusOrder;
    TouchNavigation touch;
    JumpHistory history;
    PDFViewCommands commands;

    std::optional<QColor> background;
    double minScale = 0.1;
    double maxScale = 16;
    bool ownTileLimit = false;  // set by the program, so it doesn't follow the screen
    bool keyboardFocus = false; // came by a key, so it is shown
    bool hasDrawnSharp = false;
    std::optional<QPointF> pointer;  // over the view
    std::optional<QPointF> panPoint; // where the middle button holds the pages; view point, none while it is up
    std::shared_ptr<PDFAnnotation> pressedLink;
    std::optional<RemarkNavigator::Place> pressedRemark;
    QPointF pressPoint;
    bool followedLink = false; // by the last click, so that a second one isn't taken for more

private:
    void moved();
    void pagesChanged();
    void pageContentChanged(const PDFPage& page, const QRectF& area);
    /// Paints again what lies there and at its very edges; view points.
    void updateAround(const QRectF& viewRect);
    void tileArrived(const TileKey& key);
    void updatePage();
    void wantTexts();
    void rested();
    void announceText();

    std::weak_ptr<PDFPage> m_currentPage;
    int m_currentIndex = -1;
    int m_pageCount = 0;
    QTimer m_rest; // runs out when nothing has moved for a moment
    bool m_updateQueued = false;
    bool m_planQueued = false;
    std::weak_ptr<PDFPage> m_announcedPage;
    QString m_announcedText;
};
