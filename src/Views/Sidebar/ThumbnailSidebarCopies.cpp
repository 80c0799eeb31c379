#include "CompressPDFSheetView.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "SavePanel.h"
#include "SetPasswordSheetView.h"
#include "ThumbnailSidebar.h"

#include <QFileInfo>
#include <QPointer>

QString ThumbnailSidebar::baseName() const {
    return m_document->originURL().isEmpty() ? QStringLiteral("Document")
                                             : QFileInfo(m_document->originURL().toLocalFile()).completeBaseName();
}

void ThumbnailSidebar::openCopySheet(CopySheet* sheet) {
    connect(sheet, &CopySheet::saved, this, [this](const QString& path) {
        Q_EMIT announced(QStringLiteral("Saved “%1”").arg(QFileInfo(path).fileName()));
    });
    openSheet(sheet);
}

void ThumbnailSidebar::compressDocument() {
    if (m_activeSheet)
        return;
    m_document->commitEditing();
    openCopySheet(new CompressPDFSheetView(m_document->pdfDocument(), baseName(), window()));
}

void ThumbnailSidebar::setPassword() {
    if (m_activeSheet)
        return;
    m_document->commitEditing();
    openCopySheet(new SetPasswordSheetView(m_document->pdfDocument(), baseName(), window()));
}

void ThumbnailSidebar::removePassword() {
    m_document->commitEditing();
    const QPointer<ThumbnailSidebar> self(this);
    const std::optional<QString> path = SavePanel::chooseForCopy(this, baseName() + QStringLiteral(" (Unlocked).pdf"));
    if (!self || !path)
        return;
    const auto unlocked = PageOperations::mergeFiles({m_document->pdfDocument()});
    writeFiles({{unlocked, *path}}, QStringLiteral("Saving the unlocked copy…"),
               {QStringLiteral("Password Removed"),
                QStringLiteral("Saved an unprotected copy to ") + QFileInfo(*path).fileName() + QLatin1Char('.')},
               QStringLiteral("The unlocked copy couldn't be written to that location."));
}
