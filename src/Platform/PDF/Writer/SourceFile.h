#pragma once

#include "FieldImporter.h"
#include "NamedDestinations.h"
#include "ObjectCopier.h"

#include <qpdf/QPDF.hh>

#include <map>
#include <memory>
#include <unordered_map>

class FormFields;
class PDFSource;

/// The objects of a source, read for writing. The source's own page numbers lead to page objects without a walk through
/// the page tree.
class SourceFile {
public:
    /// Opens the source once more. With `repair`, a damaged file is read as far as it goes; without, it throws
    /// `QPDFExc`, as does a file that is beyond repair.
    SourceFile(std::shared_ptr<PDFSource> source, bool repair);

    [[nodiscard]] QPDF& pdf() { return *m_pdf; }
    [[nodiscard]] const std::shared_ptr<PDFSource>& source() const { return m_source; }

    /// The dictionary of a page; a null object for a page that can't be read. `pageNumber` is zero-based.
    [[nodiscard]] QPDFObjectHandle page(int pageNumber);

    /// The entry of the page's list of annotations; a null object when there is no dictionary.
    [[nodiscard]] QPDFObjectHandle annotation(int pageNumber, int index);

    /// The value of a page's key, or that which its nodes of the page tree give (ISO 32000-1, 7.7.3.4).
    [[nodiscard]] static QPDFObjectHandle inheritable(QPDFObjectHandle page, const std::string& key);
    /// The page or the node that gives that value; null when none does.
    [[nodiscard]] static QPDFObjectHandle inheritedFrom(QPDFObjectHandle page, const std::string& key);

private:
    std::shared_ptr<PDFSource> m_source; // keeps the bytes that the file reads from
    QByteArray m_bytes;                  // those bytes with a makeshift end, where the end is missing
    std::unique_ptr<QPDF> m_pdf;
    std::unordered_map<int, int> m_generations; // by object number, where it isn't zero
};

/// The files that pages and annotations of a document come from, apart from the one that is being changed. They stay
/// open as long as this lives, which must be until the new file is written.
class SourceFiles {
public:
    /// A file to bring objects over from.
    struct Foreign {
        SourceFile file;
        ObjectCopier copier;
        FieldImporter fields;
        NamedDestinations names;
    };

    /// `main` is the file whose objects `objects` changes; null when a new file is made.
    SourceFiles(ObjectStore& objects, FormFields& form, SourceFile* main)
        : m_objects(objects), m_form(form), m_main(main) {}

    [[nodiscard]] SourceFile* main() const { return m_main; }
    /// True for the source of the file that is being changed.
    [[nodiscard]] bool isMain(const std::shared_ptr<PDFSource>& source) const;
    /// Opened on first use; the main source too, as a second file, for what is used a second time.
    [[nodiscard]] Foreign& foreign(const std::shared_ptr<PDFSource>& source);
    /// Those opened so far, apart from the main source's second opening.
    [[nodiscard]] std::vector<Foreign*> opened() const;

private:
    void shareWithMain(Foreign& second);

    ObjectStore& m_objects;
    FormFields& m_form;
    SourceFile* m_main;
    std::map<PDFSource*, std::unique_ptr<Foreign>> m_foreign;
};
