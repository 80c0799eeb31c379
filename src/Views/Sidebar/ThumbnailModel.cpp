#include "ThumbnailModel.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PlainText.h"

#include <QHash>

#include <utility>

ThumbnailModel::ThumbnailModel(std::shared_ptr<PDFDocument> document, QObject* parent)
    : QAbstractListModel(parent), m_document(std::move(document)), m_rows(m_document->pageContents()) {
    // One operation may move hundreds of pages.
    connect(m_document.get(), &PDFDocument::pagesChanged, this, [this] {
        if (!std::exchange(m_refreshQueued, true))
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (m_refreshQueued) // nobody has asked for it meanwhile
                        refresh();
                },
                Qt::QueuedConnection);
    });
}

ThumbnailModel::~ThumbnailModel() = default;

int ThumbnailModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QString ThumbnailModel::label(int row) const {
    const std::shared_ptr<PDFPage> page = m_document->page(row);
    const QString label = page ? PlainText::line(page->label()) : QString();
    return label == QString::number(row + 1) ? QString() : label;
}

QString ThumbnailModel::name(int row) const {
    const QString known = label(row);
    const QString number = QStringLiteral("page %1").arg(row + 1);
    return known.isEmpty() ? number : QStringLiteral("%1, label %2").arg(number, known);
}

QVariant ThumbnailModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return QString::number(index.row() + 1);
    case Qt::AccessibleTextRole: {
        QString text = name(index.row());
        text[0] = text[0].toUpper();
        return index.row() == m_currentRow ? text + QStringLiteral(", current page") : text;
    }
    default:
        return {};
    }
}

void ThumbnailModel::setCurrentRow(std::optional<int> row) {
    if (row == m_currentRow)
        return;
    const auto former = std::exchange(m_currentRow, row);
    for (const auto& changed : {former, row})
        if (changed && *changed < rowCount())
            Q_EMIT dataChanged(index(*changed), index(*changed));
}

/// Where each of the present rows is among those; -1 for one that isn't. Copies of one page are told apart by their
/// order.
std::vector<int> ThumbnailModel::placesIn(const std::vector<PDFPageContent>& rows) const {
    using Key = std::pair<const void*, int>;
    const auto keyOf = [](const PDFPageContent& content) { return Key(content.source.get(), content.pageNumber); };
    QHash<Key, int> firsts;
    firsts.reserve(static_cast<qsizetype>(rows.size()));
    std::vector<int> nexts(rows.size(), -1); // the next copy of the same page
    for (std::size_t i = rows.size(); i-- > 0;) {
        int& first = firsts[keyOf(rows[i])]; // a new one is 0, so they are counted from 1
        nexts[i] = std::exchange(first, static_cast<int>(i) + 1) - 1;
    }
    std::vector<int> places;
    places.reserve(m_rows.size());
    for (const PDFPageContent& content : m_rows) {
        const auto first = firsts.find(keyOf(content));
        const int place = first == firsts.end() ? -1 : *first - 1;
        places.push_back(place);
        if (place >= 0)
            *first = nexts[static_cast<std::size_t>(place)] + 1;
    }
    return places;
}

void ThumbnailModel::refresh() {
    m_refreshQueued = false;
    std::vector<PDFPageContent> rows = m_document->pageContents();
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    const std::vector<int> newRows = before.isEmpty() ? std::vector<int>() : placesIn(rows);
    m_rows = std::move(rows);
    QModelIndexList after;
    for (const QModelIndex& each : before)
        after.append(index(newRows[static_cast<std::size_t>(each.row())]));
    changePersistentIndexList(before, after);
    m_currentRow.reset();
    Q_EMIT layoutChanged();
}
