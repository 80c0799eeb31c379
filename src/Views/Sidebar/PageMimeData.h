#pragma once

#include <QMimeData>

#include <memory>
#include <optional>
#include <vector>

class PDFDocument;
class PDFEditorDocument;
class PDFPage;

/// Pages of an open document that are being dragged, within the program. As plain text it holds the zero-based index of
/// the page that was taken hold of. Main thread only.
class PageMimeData : public QMimeData {
    Q_OBJECT

public:
    /// `indices` are zero-based; `held` is the one under the pointer.
    PageMimeData(const std::shared_ptr<PDFEditorDocument>& document, const std::vector<int>& indices, int held);
    ~PageMimeData() override;

    /// Null when the data holds something else.
    [[nodiscard]] static const PageMimeData* from(const QMimeData* data);

    /// True while the pages are of this document.
    [[nodiscard]] bool isOf(const PDFEditorDocument& document) const;
    /// Where the pages stand now, ascending; those that have gone meanwhile are left out.
    [[nodiscard]] std::vector<int> indices() const;
    /// A new document of copies of them; null when they are gone.
    [[nodiscard]] std::shared_ptr<PDFDocument> copies() const;

    /// The number that plain text holds, an optional sign before its digits and nothing else; none for other data.
    [[nodiscard]] static std::optional<int> indexInText(const QMimeData& data);

private:
    std::weak_ptr<PDFEditorDocument> m_document;
    std::vector<std::weak_ptr<PDFPage>> m_pages;
};
