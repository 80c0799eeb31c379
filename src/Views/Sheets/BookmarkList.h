#pragma once

#include <QTreeView>

#include <vector>

class BookmarkModel;

/// Bookmarks as a list: the title is edited in its row, a click on the page goes there, and rows of one page are moved
/// by dragging and with Alt and the arrows. Main thread only.
class BookmarkList : public QTreeView {
    Q_OBJECT

public:
    /// `model` must outlive the list.
    explicit BookmarkList(BookmarkModel& model, QWidget* parent = nullptr);
    ~BookmarkList() override;

    /// In ascending order.
    [[nodiscard]] std::vector<int> selectedRows() const;
    /// Selects the row alone, brings it into sight and opens its title for typing.
    void editRow(int row);
    /// Takes over what is being typed.
    void finishEditing();
    /// Moves the selected rows by one place, up for a negative step, as far as they may.
    void moveSelected(int step);
    [[nodiscard]] bool canMoveSelected(int step) const;
    void removeSelected();

Q_SIGNALS:
    void goRequested(int row);
    void selectionChangedToRows();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    [[nodiscard]] int gapAt(const QDropEvent& event) const;
    [[nodiscard]] int gapFor(const std::vector<int>& rows, int step) const;

    BookmarkModel& m_model;
    int m_rowBeforeReset = -1;
};
