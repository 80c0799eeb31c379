#pragma once

#include "BookmarkOperations.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

class PDFEditorDocument;

/// The bookmarks of a document as rows: each change is written into the document at once, and what changes the document
/// otherwise, such as undo, shows here. The rows are as the document's outline has them until the first change, and in
/// the order of the pages from then on. Main thread only.
class BookmarkModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { titleColumn, pageColumn };

    explicit BookmarkModel(std::shared_ptr<PDFEditorDocument> document, QObject* parent = nullptr);
    ~BookmarkModel() override;

    [[nodiscard]] int pageIndex(int row) const { return m_bookmarks.at(std::size_t(row)).pageIndex; }

    /// Returns the row that it got.
    int add(const QString& title, int pageIndex);
    /// In ascending order.
    void remove(const std::vector<int>& rows);
    /// True when all rows are bookmarks of one page and the gap, before the row of that number, is among others of it:
    /// the pages give all other places.
    [[nodiscard]] bool canMove(const std::vector<int>& rows, int gap) const;
    void move(const std::vector<int>& rows, int gap);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    /// Takes titles that aren't blank.
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::CopyAction | Qt::MoveAction; }

private:
    using Bookmarks = std::vector<BookmarkOperations::Bookmark>;

    void read();
    void write();

    std::shared_ptr<PDFEditorDocument> m_document;
    Bookmarks m_bookmarks;
    bool m_isWriting = false;
};
