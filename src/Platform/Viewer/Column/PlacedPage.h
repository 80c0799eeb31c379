#pragma once

#include "PDFPageContent.h"
#include "PDFTypes.h"

#include <QRectF>
#include <QSize>
#include <QTransform>

#include <memory>
#include <vector>

class PDFPage;

/// All that decides how a page's own picture looks: two pages with equal looks have the same pixels.
struct PageLook {
    PDFPageContent content;
    std::vector<int> hiddenAnnotations; ///< see `PDFPage::hiddenFileAnnotations`
    PDFDisplayBox box = PDFDisplayBox::cropBox;
    int rotation = 0;
    QSize pixels; ///< of the whole page

    /// True when `other` shows the same sheet the same way up, at another size or with other annotations.
    [[nodiscard]] bool showsSameSheet(const PageLook& other) const {
        return content == other.content && box == other.box && rotation == other.rotation;
    }

    bool operator==(const PageLook&) const = default;
};

/// A page that is on the screen or near it.
struct PlacedPage {
    int index = 0;
    std::shared_ptr<PDFPage> page; ///< null for a page that can't be read
    PageLook look;
    QTransform pageToPixels; ///< page coordinates to device pixels of the page
    QRectF rect;             ///< in the view, device pixels, on whole ones
};
