#include "DocumentComposer.h"

#include "AppendComposer.h"
#include "AtomicFile.h"
#include "DocumentContents.h"
#include "FileError.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "RewriteComposer.h"

namespace {

PDFError composingFailed() {
    return {PDFError::Kind::writeFailed, QStringLiteral("The file couldn't be put together.")};
}

} // namespace

DocumentContents DocumentComposer::contentsOf(const PDFDocument& document) {
    DocumentContents contents;
    contents.source = document.m_source;
    const std::vector<PDFPageContent> pages = document.pageContents();
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const std::shared_ptr<PDFPage>& live = document.m_pages[i];
        contents.pages.push_back({pages[i], live, live && live->isModified()});
    }
    contents.outlineChanged = document.m_outlineChanged;
    contents.outline = document.m_outline;
    contents.attributesChanged = document.m_attributesChanged;
    contents.attributes = document.m_attributes.value_or(QVariantMap());
    return contents;
}

QByteArray DocumentComposer::compose(const PDFDocument& document, const PDFWriteOptions& options) {
    if (document.isLocked())
        throw PDFError(PDFError::Kind::locked, QStringLiteral("It needs its password first."));
    const DocumentContents contents = contentsOf(document);
    const bool protects = !options.userPassword.isEmpty() || !options.ownerPassword.isEmpty();
    try {
        // A file that had to be repaired isn't given back as it came: saving it is how it is mended.
        if (!protects && contents.isUnchanged() && !contents.source->wasRepaired())
            return contents.source->bytes();
        if (!protects)
            if (std::optional<QByteArray> appended = AppendComposer::compose(contents))
                return *appended;
        return RewriteComposer(contents, options).compose();
    } catch (const PDFError&) {
        throw;
    } catch (const std::bad_alloc&) {
        throw PDFError(PDFError::Kind::writeFailed, QStringLiteral("There isn't enough memory to save it."));
    } catch (const std::exception&) {
        throw composingFailed();
    }
}

void DocumentComposer::store(const QByteArray& bytes, const QString& path) {
    try {
        writeFileAtomically(path, bytes);
    } catch (const FileError& error) {
        throw PDFError(PDFError::Kind::writeFailed, error.sentence());
    }
}
