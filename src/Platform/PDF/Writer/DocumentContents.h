#pragma once

#include "PDFPageContent.h"

#include <QDateTime>
#include <QVariantMap>

#include <memory>
#include <vector>

class PDFOutline;
class PDFPage;
class PDFSource;

/// A document as it is to be written. The pages, annotations and outline in it belong to it alone and nobody changes
/// them any more; destinations among them lead to pages of it. One thread at a time.
struct DocumentContents {
    struct Page {
        PDFPageContent content;
        PDFPageContent place;          ///< the content, or that of the page whose place this one takes
        std::shared_ptr<PDFPage> page; ///< null for one that is as its source has it and that no destination needs
        bool modified = false;         ///< annotations or rotation differ from the source
    };

    std::shared_ptr<PDFSource> source; ///< null for a new document
    /// The file that one written anew starts from: the source, or for a new document one that its pages come from; null
    /// when it has none. What says something of all its pages comes along, as far as pages stay that it is about.
    std::shared_ptr<PDFSource> base;
    /// The file whose metadata are the document's, apart from attributes that changed; null when it has none.
    std::shared_ptr<PDFSource> about;
    std::vector<Page> pages;
    bool outlineChanged = false;
    std::shared_ptr<PDFOutline> outline; ///< of a changed outline; null when it was removed
    bool outlineOfAbout = false;         ///< where there is no such base: that outline, as far as it leads to the pages
    bool attributesChanged = false;
    QVariantMap attributes; ///< when they changed
    QDateTime taken;        ///< when the document was as it is here

    /// True when the pages are those of the source, all of them.
    [[nodiscard]] bool hasAllSourcePages() const;
    /// True when they are also in the source's order.
    [[nodiscard]] bool hasSourceOrder() const;
    /// True when the file would say exactly what the source says.
    [[nodiscard]] bool isUnchanged() const;
};
