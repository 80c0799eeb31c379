#pragma once

#include <QListView>
#include <QPixmap>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class PDFEditorDocument;
class ThumbnailCell;
class ThumbnailLoader;
class ThumbnailModel;

/// The pages as a column of thumbnails. It draws what is in sight, has the pictures of that drawn first, and tells what
/// the person does: it changes nothing of the document itself.
///
/// Keys: the arrows, Home, End, Page Up and Page Down go through the pages; with Shift they select from where they
/// began, with Ctrl they leave the selection as it is. Space selects, Ctrl+A selects all, Escape nothing; Return goes
/// to the page, Delete deletes, Alt+Up and Alt+Down move the selected pages, or the one with the keyboard.
class ThumbnailList : public QListView {
    Q_OBJECT

public:
    explicit ThumbnailList(std::shared_ptr<PDFEditorDocument> document, QWidget* parent = nullptr);
    ~ThumbnailList() override;

    [[nodiscard]] ThumbnailModel& model() const { return *m_model; }

    /// The page that the viewer shows; it is brought into sight.
    void setCurrentPage(std::optional<int> row);
    /// Gives the keyboard's place to a row, without a change of the selection.
    void setFocusedRow(int row);
    /// None when there are no pages.
    [[nodiscard]] std::optional<int> focusedRow() const;
    /// Ascending.
    [[nodiscard]] std::vector<int> selectedRows() const;
    /// The selected rows when `row` is among them, else that row alone.
    [[nodiscard]] std::vector<int> rowsMeantBy(int row) const;

    /// True while what is in sight, and around it, shows how the pages are now.
    [[nodiscard]] bool isDrawn() const;
    /// What the row shows; null when it hasn't been drawn yet.
    [[nodiscard]] QImage picture(int row) const;

    /// The gap that a drop at this place of the viewport falls into: before the row of that number, from 0.
    [[nodiscard]] int gapAt(QPoint position) const;
    /// Where a drag that is over the list would land; none otherwise.
    [[nodiscard]] std::optional<int> landingGap() const { return m_landingGap; }

    /// What the list does with a drag at `position`, in its viewport or beside it; for what stands above and below.
    void takeDrag(QDropEvent& event, QPoint position);
    void takeDrop(QDropEvent& event, QPoint position);
    void forgetDrag();

    /// Takes what was dropped into a gap; false when it has no use for it.
    std::function<bool(const QMimeData& dragged, int gap)> onDrop;

Q_SIGNALS:
    /// A click that was no drag.
    void tapped(int row, Qt::KeyboardModifiers modifiers);
    void menuRequested(int row, QPoint globalPosition);
    void goRequested(int row);
    void deletionRequested(const std::vector<int>& rows);
    /// Alt with an arrow key: a step of -1 or 1.
    void moveRequested(const std::vector<int>& rows, int step);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void askForPictures();
    void layOutFrom(int formerRowHeight);
    void goTo(int row, Qt::KeyboardModifiers modifiers);
    void toggle(int row);
    [[nodiscard]] int rowAfterKey(int key, int row) const;

    [[nodiscard]] bool understands(const QMimeData& dragged) const;
    void startDragging(int row);
    [[nodiscard]] QPixmap dragPicture(int row, std::size_t count) const;
    void setLandingGap(std::optional<int> gap);
    void scrollAtEdge();
    [[nodiscard]] int rowHeight() const;

    std::shared_ptr<PDFEditorDocument> m_document;
    ThumbnailLoader* m_loader;
    ThumbnailModel* m_model;
    ThumbnailCell* m_cell;
    QTimer m_pictureTimer;      ///< runs out at the end of a turn in which the list scrolled or changed
    bool m_isFollowing = false; ///< the viewer
    QTimer m_editTimer;         ///< of a page; drawing on it changes it many times a second
    std::optional<int> m_pressedRow;
    QPoint m_pressPosition;
    int m_anchorRow = 0; ///< where a selection with Shift and the keyboard began
    std::optional<int> m_landingGap;
    QPoint m_dragPosition; ///< in the viewport
    QTimer m_edgeTimer;
};
