#pragma once

#include "ObjectStore.h"
#include "PDFPageContent.h"
#include "SourceFiles.h"

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <vector>

/// Brings pages of other files into the one that is being written, each as an object of its own.
class PageImporter {
public:
    /// Gives the copy of a widget, an indirect one without Parent, its field in the form of the file being written.
    using AdoptWidget = std::function<void(QPDFObjectHandle widget, QPDFObjectHandle copy, ObjectCopier& copier)>;
    /// Tells for a place in a page's list of annotations whether it is wanted.
    using IsWanted = std::function<bool(int place)>;

    PageImporter(ObjectStore& objects, SourceFiles& files, AdoptWidget adoptWidget)
        : m_objects(objects), m_files(files), m_adoptWidget(std::move(adoptWidget)) {}

    /// Tells which object a page is going to be, before any page is filled, so that links between the pages find it.
    /// The first object of a page that comes several times is the one that links lead to.
    void announce(const PDFPageContent& content, QPDFObjectHandle page);

    /// The numbers, zero-based, of all pages that were announced, by their source.
    [[nodiscard]] const std::map<std::shared_ptr<PDFSource>, std::set<int>>& announced() const { return m_announced; }

    /// Makes `page` a copy of the content's page with those of its annotations that are wanted. The result gives the
    /// copies by their place in the source's list, null objects for the others.
    std::vector<QPDFObjectHandle> fill(const PDFPageContent& content, const IsWanted& isWanted, QPDFObjectHandle page);

private:
    std::vector<QPDFObjectHandle> importAnnotations(SourceFiles::Foreign& file, QPDFObjectHandle original,
                                                    const IsWanted& isWanted, QPDFObjectHandle page);

    ObjectStore& m_objects;
    SourceFiles& m_files;
    AdoptWidget m_adoptWidget;
    std::map<std::shared_ptr<PDFSource>, std::set<int>> m_announced;
};
