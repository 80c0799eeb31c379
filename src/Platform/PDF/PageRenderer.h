#pragma once

#include "PDFPageContent.h"

#include <QImage>
#include <QRect>
#include <QTransform>

#include <atomic>
#include <vector>

/// What a worker needs to draw a part of a page: immutable, so that it can travel to any thread.
struct PageRenderRequest {
    PDFPageContent content;
    /// Places in the file's list of annotations that aren't drawn, ascending (`PDFPage::hiddenFileAnnotations`).
    std::vector<int> hiddenAnnotations;
    /// False leaves out the file's annotations altogether.
    bool annotations = true;
    /// Page coordinates to device pixels of the whole page.
    QTransform pageToDevice;
    /// The part to draw, in device pixels. Never larger than 8192 pixels on a side; a larger one gives a null image.
    QRect deviceRect;
    /// Also draws annotations that bring no appearance: for a picture of a file alone. On a live page their live
    /// objects draw them.
    bool bareAnnotations = false;
};

/// Draws pages on the calling thread, whichever it is. Several threads may draw at once, also from one source.
namespace PageRenderer {

/// Opaque RGB32 on white, `deviceRect.size()` pixels. Null when the page can't be read, or when `cancelled` became
/// true meanwhile. Broken content draws as far as it goes.
[[nodiscard]] QImage render(const PageRenderRequest& request, const std::atomic<bool>* cancelled = nullptr);

} // namespace PageRenderer
