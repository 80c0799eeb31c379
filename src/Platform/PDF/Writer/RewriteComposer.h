#pragma once

#include "DocumentContents.h"
#include "FormFields.h"
#include "PDFDocument.h"
#include "SourceFile.h"

#include <memory>
#include <unordered_map>

class PageAnnotations;
class PageImporter;
class QIODevice;

/// Composes a whole new file: of the source's objects that the document still needs and of those that come with pages
/// from other sources.
class RewriteComposer {
public:
    RewriteComposer(const DocumentContents& contents, const PDFWriteOptions& options);
    ~RewriteComposer();

    /// Writes the file to `device`, whose errors are for the caller to notice. Once. Throws `std::exception`.
    void compose(QIODevice& device);

private:
    void findPages();
    void writePages(PageAnnotations& annotations);
    void arrangePages();
    void write(QIODevice& device);
    [[nodiscard]] QPDFObjectHandle pageObject(const PDFPage& page) const;

    const DocumentContents& m_contents;
    const PDFWriteOptions& m_options;
    std::unique_ptr<SourceFile> m_main; // null for a new document
    std::unique_ptr<QPDF> m_empty;      // a new document
    std::unique_ptr<FileObjects> m_objects;
    std::unique_ptr<FormFields> m_form;
    std::unique_ptr<SourceFiles> m_files;
    std::unique_ptr<PageImporter> m_importer;

    struct OutputPage {
        QPDFObjectHandle object;
        bool imported = false; ///< and not an object of the main file, left where it was
    };
    std::vector<OutputPage> m_pages; // one for each page of the document
    std::unordered_map<const PDFPage*, std::size_t> m_places;
};
