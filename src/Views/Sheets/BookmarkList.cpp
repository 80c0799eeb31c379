#include "BookmarkList.h"

#include "BookmarkModel.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QStyledItemDelegate>

#include <algorithm>

namespace {

class TitleDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        editor->setObjectName(QStringLiteral("bookmarkTitle"));
        editor->setAccessibleName(QStringLiteral("Title"));
        return editor;
    }

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int room = 10; // pixels above and below the letters together, for the field
        const QSize hint = QStyledItemDelegate::sizeHint(option, index);
        return {hint.width(), std::max(hint.height(), option.fontMetrics.height() + room)};
    }
};

} // namespace

BookmarkList::BookmarkList(BookmarkModel& model, QWidget* parent) : QTreeView(parent), m_model(model) {
    setObjectName(QStringLiteral("bookmarkList"));
    setAccessibleName(QStringLiteral("Bookmarks"));
    setModel(&model);
    setItemDelegate(new TitleDelegate(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true); // thousands of rows need not be measured
    setAllColumnsShowFocus(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed | SelectedClicked);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDragDropMode(InternalMove);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(false);
    header()->setSectionResizeMode(BookmarkModel::titleColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(BookmarkModel::pageColumn, QHeaderView::Fixed);
    header()->resizeSection(BookmarkModel::pageColumn,
                            fontMetrics().horizontalAdvance(QStringLiteral("Page 000000")) + 12);
    // Where the rows were sorted or undone, the current one isn't lost.
    connect(&model, &QAbstractItemModel::layoutChanged, this, [this] { scrollTo(currentIndex()); });
    connect(&model, &QAbstractItemModel::modelAboutToBeReset, this,
            [this] { m_rowBeforeReset = currentIndex().row(); });
    connect(&model, &QAbstractItemModel::modelReset, this, [this] {
        if (m_rowBeforeReset >= 0 && m_model.rowCount() > 0)
            setCurrentIndex(
                m_model.index(std::min(m_rowBeforeReset, m_model.rowCount() - 1), BookmarkModel::titleColumn));
    });
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex& index) {
        if (index.column() == BookmarkModel::pageColumn)
            Q_EMIT goRequested(index.row());
    });
}

BookmarkList::~BookmarkList() = default;

std::vector<int> BookmarkList::selectedRows() const {
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    return rows;
}

void BookmarkList::editRow(int row) {
    const QModelIndex index = m_model.index(row, BookmarkModel::titleColumn);
    setCurrentIndex(index);
    scrollTo(index);
    edit(index);
}

void BookmarkList::finishEditing() {
    const QModelIndex current = currentIndex();
    if (QWidget* editor =
            current.isValid() ? indexWidget(current.siblingAtColumn(BookmarkModel::titleColumn)) : nullptr) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

int BookmarkList::gapFor(const std::vector<int>& rows, int step) const {
    return rows.empty() ? -1 : step < 0 ? rows.front() - 1 : rows.back() + 2;
}

bool BookmarkList::canMoveSelected(int step) const {
    const std::vector<int> rows = selectedRows();
    return m_model.canMove(rows, gapFor(rows, step));
}

void BookmarkList::moveSelected(int step) {
    const std::vector<int> rows = selectedRows();
    m_model.move(rows, gapFor(rows, step));
    scrollTo(currentIndex());
    Q_EMIT selectionChangedToRows(); // they have other neighbours
}

void BookmarkList::removeSelected() {
    const std::vector<int> rows = selectedRows();
    m_model.remove(rows);
    if (!rows.empty() && m_model.rowCount() > 0)
        setCurrentIndex(m_model.index(std::min(rows.front(), m_model.rowCount() - 1), BookmarkModel::titleColumn));
}

void BookmarkList::keyPressEvent(QKeyEvent* event) {
    const bool isAlone = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isWithAlt = (event->modifiers() & ~Qt::KeypadModifier) == Qt::AltModifier;
    if (isWithAlt && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down))
        moveSelected(event->key() == Qt::Key_Up ? -1 : 1);
    else if (isAlone && event->key() == Qt::Key_Delete)
        removeSelected();
    else if (isAlone && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIndex().isValid() &&
             state() != EditingState) // a title that is being typed passes the key on
        Q_EMIT goRequested(currentIndex().row());
    else
        QTreeView::keyPressEvent(event);
}

int BookmarkList::gapAt(const QDropEvent& event) const {
    const QModelIndex index = indexAt(event.position().toPoint());
    if (!index.isValid())
        return m_model.rowCount();
    return event.position().y() < visualRect(index).center().y() ? index.row() : index.row() + 1;
}

void BookmarkList::dragMoveEvent(QDragMoveEvent* event) {
    QTreeView::dragMoveEvent(event);
    const bool isPossible = event->source() == this && m_model.canMove(selectedRows(), gapAt(*event));
    setDropIndicatorShown(isPossible);
    event->setAccepted(isPossible);
}

void BookmarkList::dropEvent(QDropEvent* event) {
    if (event->source() == this)
        m_model.move(selectedRows(), gapAt(*event));
    event->setDropAction(Qt::CopyAction); // or the view would remove the rows that it believes to be copied
    event->accept();
    setState(NoState);
    viewport()->update();
    Q_EMIT selectionChangedToRows();
}

void BookmarkList::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTreeView::selectionChanged(selected, deselected);
    Q_EMIT selectionChangedToRows();
}
