#pragma once

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "UndoManager.h"

#include <QFile>
#include <QStringList>

#include <algorithm>

/// Edits of documents as views make them, and what is left of them in a file.
namespace EditedPdf {

/// Pages that say "Page 1", "Page 2", ….
inline QByteArray pages(int count, const QByteArray& password = {}) {
    PdfFixture fixture;
    for (int page = 1; page <= count; ++page)
        fixture.addPage({QStringLiteral("Page %1").arg(page)});
    return password.isEmpty() ? fixture.bytes() : fixture.encrypted(password, password, PdfFixture::Encryption::aes256);
}

inline void store(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("A test file can't be written.");
}

/// Puts a red square on the first page. Undo takes it away.
inline void addSquare(PDFEditorDocument& document) {
    const std::shared_ptr<PDFPage> page = document.pdfDocument()->page(0);
    const auto square = std::make_shared<PDFAnnotation>(QRectF(100, 100, 200, 150), PDFAnnotationSubtype::square);
    square->setColor(Qt::red);
    square->setInteriorColor(Qt::red);
    page->addAnnotation(square);
    document.undoManager()->registerUndo(&document, [page, square] { page->removeAnnotation(square); });
}

/// Takes the last page out, which needs the file written anew. Undo brings it back.
inline void removeLastPage(PDFEditorDocument& document) {
    const std::shared_ptr<PDFDocument> pages = document.pdfDocument();
    const auto page = pages->removePage(pages->pageCount() - 1);
    document.undoManager()->registerUndo(&document, [pages, page] { pages->insert(page, pages->pageCount()); });
}

/// On the first page.
inline int squareCount(const PDFDocument& document) {
    const auto& annotations = document.page(0)->annotations();
    return static_cast<int>(std::count_if(annotations.begin(), annotations.end(), [](const auto& annotation) {
        return annotation->type() == PDFAnnotationSubtype::square;
    }));
}

/// Tells documents with other titles, pages, annotations or values apart, in one line. Pages are told by their widths.
inline QString state(const PDFDocument& document) {
    QStringList pages;
    for (int i = 0; i < document.pageCount(); ++i) {
        const std::shared_ptr<PDFPage> page = document.page(i);
        QStringList annotations;
        for (const auto& annotation : page->annotations())
            annotations.append(annotation->type() == PDFAnnotationSubtype::widget ? annotation->widgetStringValue()
                                                                                  : annotation->contents());
        pages.append(
            QStringLiteral("%1[%2]").arg(page->bounds(PDFDisplayBox::mediaBox).width()).arg(annotations.join(u',')));
    }
    return QStringLiteral("%1: %2").arg(document.documentAttributes().value(QStringLiteral("Title")).toString(),
                                        pages.join(u' '));
}

} // namespace EditedPdf
