#pragma once

#include "PDFPageContent.h"

#include <QVariantMap>

#include <memory>
#include <vector>

class PDFOutline;
class PDFPage;
class PDFSource;

/// A document as it is to be written: what its parts hold at the moment of writing.
struct DocumentContents {
    struct Page {
        PDFPageContent content;
        std::shared_ptr<PDFPage> live; ///< null for a page that nobody has looked at, which is as its source has it
        bool modified = false;         ///< annotations or rotation differ from the source
    };

    std::shared_ptr<PDFSource> source; ///< null for a new document
    std::vector<Page> pages;
    bool outlineChanged = false;
    std::shared_ptr<PDFOutline> outline;
    bool attributesChanged = false;
    QVariantMap attributes;

    /// True when the pages are those of the source, all of them.
    [[nodiscard]] bool hasAllSourcePages() const;
    /// True when they are also in the source's order.
    [[nodiscard]] bool hasSourceOrder() const;
    /// True when the file would say exactly what the source says.
    [[nodiscard]] bool isUnchanged() const;
};
