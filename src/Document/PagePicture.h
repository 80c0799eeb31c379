#pragma once

#include "PageRenderer.h"

#include <QImage>
#include <QPicture>
#include <QSize>

#include <atomic>

class PDFPage;

/// A small picture of a live page as it is at one moment, annotations included, to be drawn on another thread.
class PagePicture {
public:
    /// Takes note of what the page shows; main thread. `size`, in pixels, is what the picture is to fit into.
    PagePicture(const PDFPage& page, QSize size);

    /// Any thread, and opaque. Null when the page can't be drawn, or when `cancelled` became true meanwhile.
    [[nodiscard]] QImage image(const std::atomic<bool>& cancelled) const;

private:
    PageRenderRequest m_request;
    QPicture m_liveAnnotations; ///< in page coordinates
};
