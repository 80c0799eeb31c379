#include "PageMimeData.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PageOperations.h"

#include <QRegularExpression>

#include <algorithm>

PageMimeData::PageMimeData(const std::shared_ptr<PDFEditorDocument>& document, const std::vector<int>& indices,
                           int held)
    : m_document(document) {
    for (const int index : indices)
        m_pages.push_back(document->pdfDocument()->page(index));
    setText(QString::number(held));
}

PageMimeData::~PageMimeData() = default;

const PageMimeData* PageMimeData::from(const QMimeData* data) {
    return qobject_cast<const PageMimeData*>(data);
}

bool PageMimeData::isOf(const PDFEditorDocument& document) const {
    return m_document.lock().get() == &document;
}

std::vector<int> PageMimeData::indices() const {
    std::vector<int> found;
    if (const std::shared_ptr<PDFEditorDocument> document = m_document.lock())
        for (const auto& page : m_pages)
            if (const int index = document->pdfDocument()->index(page.lock().get()); index >= 0)
                found.push_back(index);
    std::sort(found.begin(), found.end());
    return found;
}

std::shared_ptr<PDFDocument> PageMimeData::copies() const {
    const std::vector<int> found = indices();
    const std::shared_ptr<PDFEditorDocument> document = m_document.lock();
    if (found.empty())
        return nullptr;
    document->commitEditing();
    return PageOperations::extractPages({found.begin(), found.end()}, *document->pdfDocument());
}

std::optional<int> PageMimeData::indexInText(const QMimeData& data) {
    static const QRegularExpression integer(QStringLiteral("\\A[+-]?[0-9]+\\z"));
    bool isInteger = false;
    const QString text = data.hasText() ? data.text() : QString();
    const int index = integer.match(text).hasMatch() ? text.toInt(&isInteger) : 0;
    return isInteger ? std::optional(index) : std::nullopt;
}
