#pragma once

#include "PDFTypes.h"
#include "PageSurface.h"

#include <QColor>
#include <QPointF>
#include <QRectF>

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

class PDFDestination;
class PDFAnnotation;
class PDFDocument;
class PDFFormField;
class PDFPage;
class PDFSelection;
struct PDFDraft;
struct PDFViewParts;
class QAction;
class QMenu;
class QUrl;

/// How the pages are arranged.
enum class PDFDisplayMode {
    singlePageContinuous, ///< one column of all pages
};

/// The commands that the view has an action for. Those with keys of their own: copy Ctrl+C, select all Ctrl+A, back
/// Alt+Left, forward Alt+Right, first page Ctrl+Home, last page Ctrl+End; the keys work while the view has the
/// keyboard.
enum class PDFViewCommand {
    copy,
    selectAll,
    goBack,
    goForward,
    goToFirstPage,
    goToLastPage,
    goToNextPage,
    goToPreviousPage,
};

/// Shows a document as one continuous column of pages, to be scrolled, zoomed, selected from and followed through its
/// links, and its form to be filled. Main thread only.
///
/// Pages are drawn by threads of the view; scrolling never waits for them: what isn't drawn yet is shown as a blurred
/// smaller picture, or as white paper. The sizes of pages out of sight are estimated until they have been surveyed, and
/// nothing that the reader sees moves when they are.
///
/// Keys: Page Up and Page Down, Space and Shift+Space scroll by a screen; the arrows by a little, Left and Right by a
/// page when nothing lies to the side; Home and End go to the start and the end of the current page; Tab and Shift+Tab
/// go through the links and the annotations with words on the screen and through the fields of a form, Return follows a
/// link and opens what an annotation says, Space and the arrows fill a field, Escape leaves it or drops the selection;
/// Shift+F10 opens the menu. The wheel zooms with Ctrl and scrolls to the side with Shift.
///
/// Mouse: the middle button takes hold of the pages and moves them. Over an annotation a tip says who made it, when and
/// what it says; a click shows that in a small panel, from which it can be copied.
///
/// Fingers: one scrolls and flings, two zoom and move, a tap is a click, a finger that rests opens the menu.
class PDFView : public PageSurface {
    Q_OBJECT

public:
    explicit PDFView(QWidget* parent = nullptr);
    ~PDFView() override;

    [[nodiscard]] std::shared_ptr<PDFDocument> document() const override;
    /// Shows another document from its start. The selection and the history of jumps are dropped, and what was being
    /// drawn is cancelled. Does nothing for the document that is shown already.
    void setDocument(const std::shared_ptr<PDFDocument>& document);
    /// Reads the pages and their sizes again and lays them out; the reader keeps his place. A change that the document
    /// tells of needs no call.
    void layoutDocumentView();

    // Pages

    /// The page that takes the most of the view, or the one that was gone to last as long as it is in sight. Null
    /// without pages.
    [[nodiscard]] std::shared_ptr<PDFPage> currentPage() const;
    /// Zero-based; none without pages.
    [[nodiscard]] std::optional<int> currentPageIndex() const;
    /// The pages in sight, in order.
    [[nodiscard]] std::vector<std::shared_ptr<PDFPage>> visiblePages() const;

    /// Brings the top of a page to the top of the view. Does nothing for a page of another document. This, going to a
    /// destination, to the first and to the last page are jumps, which the history notes.
    void goToPage(const std::shared_ptr<PDFPage>& page);
    /// Brings the destination to the upper left of the view, at its scale when it has one.
    void goToDestination(const PDFDestination& destination);
    /// Scrolls by as little as brings the start of the selection into sight.
    void goToSelection(const PDFSelection& selection);
    void goToNextPage();
    void goToPreviousPage();
    void goToFirstPage();
    void goToLastPage();
    [[nodiscard]] bool canGoToNextPage() const;
    [[nodiscard]] bool canGoToPreviousPage() const;
    void goBack();
    void goForward();
    [[nodiscard]] bool canGoBack() const;
    [[nodiscard]] bool canGoForward() const;

    // Looks

    /// True while the scale fits the width of the view and follows it. At first false.
    [[nodiscard]] bool autoScales() const;
    void setAutoScales(bool scales);
    [[nodiscard]] double scaleFactor() const override;
    /// Keeps the middle of the view in place. The value is clamped to the limits. This ends `autoScales`, but for the
    /// very value of `scaleFactorForSizeToFit`, which starts it.
    void setScaleFactor(double scale);
    /// 0.1 unless set; less while a page is so wide that it takes less to fit.
    [[nodiscard]] double minScaleFactor() const;
    void setMinScaleFactor(double scale);
    /// 16 unless set.
    [[nodiscard]] double maxScaleFactor() const;
    void setMaxScaleFactor(double scale);
    /// At which the current page fills the width of the view; at most `maxScaleFactor`. 1 without pages.
    [[nodiscard]] double scaleFactorForSizeToFit() const;
    void zoomAt(QPointF viewPoint, double factor) override;

    [[nodiscard]] PDFDisplayMode displayMode() const { return PDFDisplayMode::singlePageContinuous; }
    /// Gaps and soft shadows between pages; at first true.
    [[nodiscard]] bool displaysPageBreaks() const;
    void setDisplaysPageBreaks(bool breaks);
    /// Which box of a page is shown; at first the crop box.
    [[nodiscard]] PDFDisplayBox displayBox() const;
    void setDisplayBox(PDFDisplayBox box);
    /// Around the pages; the palette's window colour until it is set.
    [[nodiscard]] QColor backgroundColor() const;
    void setBackgroundColor(const QColor& color);

    [[nodiscard]] std::shared_ptr<PDFPage> pageAt(QPointF viewPoint, bool nearest) const override;

    // Selection

    /// None when nothing is selected. For a selection over very many pages the first call reads all of their texts,
    /// which takes seconds for a thousand; `hasSelection` and `copy` don't keep anyone waiting.
    [[nodiscard]] std::optional<PDFSelection> currentSelection() const;
    [[nodiscard]] bool hasSelection() const;
    /// Whether text is selected, as far as can be told in a moment: on the pages in sight, or else on the first ones of
    /// the selection. All of a scan is selected without any text.
    [[nodiscard]] bool hasSelectedText() const;
    /// What is selected on a page, as [start, end) in its text; an end may be past that of the text. Reads no text.
    [[nodiscard]] std::vector<std::pair<int, int>> selectedRanges(const PDFPage& page) const;
    void setCurrentSelection(const std::optional<PDFSelection>& selection);
    void clearSelection();
    /// Selects the text of all pages. Takes no time: no text is read for it.
    void selectAll();
    /// Puts the selected text on the clipboard. What takes its time is read on another thread, and the text is there
    /// when that is done; until then Escape gives it up. One such reading goes on at a time: the next gives it up too.
    void copy();
    /// The same for `use`, which is called on this thread, maybe at once, unless the reading is given up.
    void readSelectedText(const std::function<void(const QString& text)>& use);
    /// The same for the text of a page.
    void readText(const PDFPage& page, const std::function<void(const QString& text)>& use);
    [[nodiscard]] bool isReadingText() const;
    /// Gives up what is still being read; the clipboard stays as it is.
    void cancelReadingText();

    // Forms

    /// Whether form fields react to the pointer and the keyboard; at first true. Turning it off commits what is being
    /// typed into one.
    void setFillsForms(bool fills);
    /// True while the editor of a field is open.
    [[nodiscard]] bool isFilling() const;
    /// Takes what was typed into a field into the document.
    void commitFilling();
    /// The same, but a field that is typed in stays open, so that typing can go on.
    void applyFilling();
    void reveal(const PDFAnnotation& annotation) override;
    /// Adds what stands in the open editors over the pages, which go on.
    void addTo(PDFDraft& draft) const;

    // Annotations

    /// Whether annotations say what they say to the pointer and the keyboard; at first true. Turning it off closes the
    /// panel.
    void setReadsRemarks(bool reads);
    /// Closes the panel that shows what an annotation says.
    void closeRemark();

    // Memory and measuring

    /// For drawn tiles, 72 MB for each device pixel in a device-independent one, unless set.
    void setTileCacheLimit(qint64 bytes);
    /// What the drawn tiles and the pictures that stand in for them take now.
    [[nodiscard]] qint64 tileCacheBytes() const;
    /// Drops what is drawn but not on the screen; what is on the screen is drawn anew and stays until then.
    void clearCaches();
    /// True when no stand-in is on the screen.
    [[nodiscard]] bool isSharp() const;

    /// Owned by the view.
    [[nodiscard]] QAction* action(PDFViewCommand command) const;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// Another page is current, or the current one has another place among the pages, or their number changed.
    void pageChanged();
    void scaleChanged();
    void selectionChanged();
    void historyChanged();
    /// How many pages have been read of those whose text takes its time.
    void textReadingProgressed(int pagesRead, int pageCount);
    /// They were put to their use, or given up.
    void textReadingEnded();
    /// The user gave a form field another value than `before`.
    void formFieldChanged(const PDFFormField& field, const QStringList& before);
    /// The editor of a form field was opened or closed.
    void fillingChanged();
    /// The reader followed a link to a web address; the view opens none.
    void linkActivated(const QUrl& url);
    /// The view was painted and all of it is sharp; `firstSharpPaint` for the first time with this document. Sent while
    /// painting, so only to be noted.
    void pageDrawn(bool firstSharpPaint);

protected:
    /// The pointer rests or moves at a view point: sets its shape. A hand over links, buttons and choices, an I over
    /// text.
    virtual void updateCursor(QPointF viewPoint);
    /// The menu for a click with the right button; null for none.
    [[nodiscard]] virtual std::unique_ptr<QMenu> menu(QPointF viewPoint);
    /// Escape: gives up a copy that takes its time, leaves a link or field that has the keyboard, or drops the
    /// selection. False when there was neither, so that the key goes on to the window.
    virtual bool cancelOperation();
    /// Draws over the pages. The painter is set to view points.
    virtual void drawOverPages(QPainter& painter);
    [[nodiscard]] std::optional<QTransform> pageToView(const PDFPage& page) const override;
    /// True while the middle button moves the pages.
    [[nodiscard]] bool isPanning() const;
    /// False for an annotation whose words aren't meant for people.
    [[nodiscard]] virtual bool showsRemark(const PDFAnnotation& annotation) const;
    /// True for a link that leads somewhere.
    [[nodiscard]] bool hasLink(QPointF viewPoint) const;

    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    /// Out of sight only the small pictures of pages are kept, so that twenty tabs take little more memory than one.
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    friend struct PDFViewParts;

    void startPanning(QPointF viewPoint);
    void pan(QPointF viewPoint);
    void stopPanning(QPointF viewPoint);
    void showMenu(QPointF viewPoint);
    /// Where the keyboard opens the menu: on the selection where that is seen, else in the middle. View point.
    [[nodiscard]] QPointF menuPoint() const;

    const std::unique_ptr<PDFViewParts> m_parts;
};
