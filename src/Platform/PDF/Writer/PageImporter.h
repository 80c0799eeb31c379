#pragma once

#include "ObjectStore.h"
#include "PDFPageContent.h"
#include "SourceFile.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

class PDFPage;

/// Brings pages of other files into the one that is being written, each as an object of its own.
class PageImporter {
public:
    PageImporter(ObjectStore& objects, SourceFiles& files) : m_objects(objects), m_files(files) {}

    /// Tells which object a page is going to be, before any page is filled, so that links between the pages find it.
    /// The first object of a page that comes several times is the one that links lead to.
    void announce(const PDFPageContent& content, QPDFObjectHandle page);

    /// To be called when all are announced and before the first is filled: parts that the pages share with others of
    /// their file are cut down to what these pages need.
    void separateFromOthers();

    /// Makes `page` a copy of the content's page. `changed` is null for a page with the annotations of its source;
    /// otherwise only those that it still has are copied, and the result gives them by their place in the source's
    /// list, for `PageAnnotations::write`.
    std::vector<QPDFObjectHandle> fill(const PDFPageContent& content, const PDFPage* changed, QPDFObjectHandle page);

private:
    std::vector<QPDFObjectHandle> importAnnotations(SourceFiles::Foreign& file, QPDFObjectHandle original,
                                                    const PDFPage* changed, QPDFObjectHandle page);
    QPDFObjectHandle importTarget(SourceFiles::Foreign& file, QPDFObjectHandle destination);

    ObjectStore& m_objects;
    SourceFiles& m_files;
    std::map<std::shared_ptr<PDFSource>, std::set<int>> m_announced; // page numbers
};
