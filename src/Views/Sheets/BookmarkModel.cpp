#include "BookmarkModel.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFOutline.h"
#include "PlainText.h"

#include <QGuiApplication>
#include <QHash>
#include <QPalette>

#include <algorithm>
#include <utility>

BookmarkModel::BookmarkModel(std::shared_ptr<PDFEditorDocument> document, QObject* parent)
    : QAbstractTableModel(parent), m_document(std::move(document)) {
    read();
    connect(m_document.get(), &PDFEditorDocument::objectWillChange, this, [this] {
        if (m_isWriting)
            return;
        beginResetModel();
        read();
        endResetModel();
    });
}

BookmarkModel::~BookmarkModel() = default;

void BookmarkModel::read() {
    m_bookmarks.clear();
    const std::shared_ptr<PDFDocument> pdf = m_document->pdfDocument();
    if (const auto root = pdf->outlineRoot())
        BookmarkOperations::collect(*root, m_bookmarks, *pdf);
}

/// The rows come into the order in which they are written; selection and current row follow them.
void BookmarkModel::write() {
    Bookmarks sorted = m_bookmarks;
    BookmarkOperations::sort(sorted);
    Q_EMIT layoutAboutToBeChanged();
    QHash<QUuid, int> places;
    for (int row = 0; row < int(sorted.size()); ++row)
        places.insert(sorted[std::size_t(row)].id, row);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& old : before)
        after.append(index(places.value(m_bookmarks[std::size_t(old.row())].id), old.column()));
    m_bookmarks = std::move(sorted);
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
    m_isWriting = true;
    BookmarkOperations::writeBookmarks(m_bookmarks, *m_document, m_document->undoManager().get());
    m_isWriting = false;
}

int BookmarkModel::add(const QString& title, int pageIndex) {
    const int end = rowCount();
    beginInsertRows({}, end, end);
    m_bookmarks.push_back({.title = title, .pageIndex = pageIndex});
    endInsertRows();
    const QPersistentModelIndex added(index(end, 0));
    write();
    return added.row();
}

void BookmarkModel::remove(const std::vector<int>& rows) {
    if (rows.empty())
        return;
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        beginRemoveRows({}, *row, *row);
        m_bookmarks.erase(m_bookmarks.begin() + *row);
        endRemoveRows();
    }
    write();
}

bool BookmarkModel::canMove(const std::vector<int>& rows, int gap) const {
    if (rows.empty() || gap < 0 || gap > rowCount())
        return false;
    const int page = pageIndex(rows.front());
    const bool isOnePage = std::all_of(rows.begin(), rows.end(), [&](int row) { return pageIndex(row) == page; });
    const bool isAmongThem = (gap > 0 && pageIndex(gap - 1) == page) || (gap < rowCount() && pageIndex(gap) == page);
    const int first = gap - int(std::lower_bound(rows.begin(), rows.end(), gap) - rows.begin());
    const bool stays = rows.front() == first && rows.back() == first + int(rows.size()) - 1;
    return isOnePage && isAmongThem && !stays;
}

void BookmarkModel::move(const std::vector<int>& rows, int gap) {
    if (!canMove(rows, gap))
        return;
    // From the gap outwards, so that none of them shifts those that are still to move.
    const auto step = [this](int from, int before) {
        if (from == before || from + 1 == before)
            return;
        beginMoveRows({}, from, from, {}, before);
        const auto at = m_bookmarks.begin();
        if (from < before)
            std::rotate(at + from, at + from + 1, at + before);
        else
            std::rotate(at + before, at + from, at + from + 1);
        endMoveRows();
    };
    const auto behind = std::lower_bound(rows.begin(), rows.end(), gap);
    int to = gap;
    for (auto row = behind; row != rows.end(); ++row)
        step(*row, to++);
    to = gap;
    for (auto row = std::make_reverse_iterator(behind); row != rows.rend(); ++row)
        step(*row, to--);
    write();
}

int BookmarkModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_bookmarks.size());
}

int BookmarkModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 2;
}

QVariant BookmarkModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const BookmarkOperations::Bookmark& bookmark = m_bookmarks.at(std::size_t(index.row()));
    if (index.column() == titleColumn) {
        if (role == Qt::ToolTipRole)
            return PlainText::toolTip(bookmark.title);
        if (role == Qt::DisplayRole)
            return PlainText::line(bookmark.title);
        return role == Qt::EditRole ? bookmark.title : QVariant();
    }
    if (role == Qt::DisplayRole)
        return QStringLiteral("Page %1").arg(bookmark.pageIndex + 1);
    if (role == Qt::ToolTipRole)
        return QStringLiteral("Go to page %1").arg(bookmark.pageIndex + 1);
    if (role == Qt::ForegroundRole)
        return QGuiApplication::palette().brush(QPalette::Link);
    return {};
}

QVariant BookmarkModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == titleColumn ? QStringLiteral("Title") : QStringLiteral("Page");
}

Qt::ItemFlags BookmarkModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::ItemIsDropEnabled; // between the rows
    const Qt::ItemFlags flags =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
    return index.column() == titleColumn ? flags | Qt::ItemIsEditable : flags;
}

bool BookmarkModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const QString typed = value.toString();
    if (!index.isValid() || index.column() != titleColumn || role != Qt::EditRole || typed.trimmed().isEmpty())
        return false;
    BookmarkOperations::Bookmark& bookmark = m_bookmarks.at(std::size_t(index.row()));
    if (typed == bookmark.title)
        return true;
    bookmark.title = typed;
    Q_EMIT dataChanged(index, index);
    write();
    return true;
}
