#include "BookmarksEditorView.h"
#include "MetadataEditorView.h"
#include "PDFEditorDocument.h"
#include "ThumbnailSidebar.h"
#include "UndoManager.h"
#include "WatermarkSheetView.h"

#include <QDialog>

void ThumbnailSidebar::openSheet(QDialog* sheet) {
    m_activeSheet = sheet;
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void ThumbnailSidebar::editMetadata() {
    if (m_activeSheet)
        return;
    m_document->commitEditing();
    openSheet(new MetadataEditorView(m_document, window()));
}

void ThumbnailSidebar::editBookmarks() {
    if (m_activeSheet)
        return;
    m_document->commitEditing();
    openSheet(new BookmarksEditorView(m_document, m_coordinator, window()));
}

void ThumbnailSidebar::addWatermark() {
    if (m_activeSheet)
        return;
    m_document->commitEditing();
    openSheet(new WatermarkSheetView(m_document, m_document->undoManager().get(), window()));
}
