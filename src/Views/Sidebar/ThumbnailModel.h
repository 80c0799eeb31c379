#pragma once

#include "PDFPageContent.h"

#include <QAbstractListModel>

#include <memory>
#include <optional>
#include <vector>

class PDFDocument;

/// The pages of a document as rows of a list, in order. What is known of a row (selected, with the keyboard) goes with
/// its page when pages move. Main thread only.
class ThumbnailModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit ThumbnailModel(std::shared_ptr<PDFDocument> document, QObject* parent = nullptr);
    ~ThumbnailModel() override;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    /// The page's number from 1 as the text, and a sentence for screen readers.
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// The label that the file gives the page; empty when it has none or it is the page's number.
    [[nodiscard]] QString label(int row) const;
    /// "page 3, label ii".
    [[nodiscard]] QString name(int row) const;

    [[nodiscard]] std::optional<int> currentRow() const { return m_currentRow; }
    /// The page that the viewer shows.
    void setCurrentRow(std::optional<int> row);

    /// Takes over the document's present pages.
    void refresh();

private:
    [[nodiscard]] std::vector<int> placesIn(const std::vector<PDFPageContent>& rows) const;

    std::shared_ptr<PDFDocument> m_document;
    std::vector<PDFPageContent> m_rows;
    std::optional<int> m_currentRow;
    bool m_refreshQueued = false;
};
