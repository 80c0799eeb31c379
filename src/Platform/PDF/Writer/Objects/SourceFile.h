#pragma once

#include "PackedLinks.h"

#include <qpdf/QPDF.hh>

#include <QByteArray>

#include <memory>
#include <unordered_map>
#include <vector>

class PDFSource;

/// The objects of a source, read for writing. The source's own page numbers lead to page objects without a walk through
/// the page tree.
class SourceFile {
public:
    enum class Base {
        asItCame, ///< damage throws `QPDFExc`
        repaired, ///< the drawing engine's copy where that has seen more in the file, as in one that is damaged
        copy,     ///< the drawing engine's copy in any case, if there is one
    };

    /// Opens the source once more. Throws `PDFError` when the file is too damaged, and `QPDFExc`.
    SourceFile(std::shared_ptr<PDFSource> source, Base base);

    [[nodiscard]] QPDF& pdf() { return *m_pdf; }
    /// True when something was found that the drawing engine may have read in another way. Ask again after reading.
    [[nodiscard]] bool isInDoubt() const;
    [[nodiscard]] const std::shared_ptr<PDFSource>& source() const { return m_source; }

    /// Lets the links be texts, for a file that is going to be copied as a whole and of which nothing was asked yet.
    /// Nothing changes for one that isn't sound, or is encrypted.
    void takeLinks();
    [[nodiscard]] PackedLinks& links() { return m_links; }

    /// To be called before most of the pages are asked for: finds them all by one walk through the page tree, which
    /// costs less than to have the source look up one after the other. False, and nothing changes, where the tree isn't
    /// as it should be, so that its pages might be counted in another way.
    bool findAllPages();
    /// True once that has found them.
    [[nodiscard]] bool knowsAllPages() const { return m_knowsPages; }

    /// The dictionary of a page; a null object for a page that can't be read. `pageNumber` is zero-based.
    [[nodiscard]] QPDFObjectHandle page(int pageNumber);

    /// The entry of the page's list of annotations; a null object when there is no dictionary.
    [[nodiscard]] QPDFObjectHandle annotation(int pageNumber, int index);

    /// The value of a page's key, or that which its nodes of the page tree give (ISO 32000-1, 7.7.3.4).
    [[nodiscard]] static QPDFObjectHandle inheritable(QPDFObjectHandle page, const std::string& key);
    /// The page or the node that gives that value; null when none does.
    [[nodiscard]] static QPDFObjectHandle inheritedFrom(QPDFObjectHandle page, const std::string& key);

private:
    /// Nothing changes when there is no copy that can be opened.
    void openCopy();
    void noteGenerations();
    /// True when every page of the source is there, and new objects can be added.
    [[nodiscard]] bool holdsPages();

    std::shared_ptr<PDFSource> m_source; // keeps the bytes that the file reads from
    QByteArray m_bytes;                  // that are read instead: the engine's copy of a damaged file
    std::unique_ptr<QPDF> m_pdf;
    PackedLinks m_links;
    std::unordered_map<int, int> m_generations; // by object number, where it isn't zero
    std::vector<QPDFObjectHandle> m_pages;      // empty until all are found
    bool m_knowsPages = false;
};
