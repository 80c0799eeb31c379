#pragma once

#include <QPointF>

#include <memory>
#include <optional>

class PDFPage;

/// A place in a document: a page, and where on it. The page is held weakly: a destination never keeps a page that
/// left its document.
class PDFDestination {
public:
    PDFDestination(const std::shared_ptr<PDFPage>& page, std::optional<double> x, std::optional<double> y,
                   std::optional<double> zoom = std::nullopt)
        : m_page(page), m_x(x), m_y(y), m_zoom(zoom) {}
    PDFDestination(const std::shared_ptr<PDFPage>& page, QPointF point) : PDFDestination(page, point.x(), point.y()) {}

    /// The same place on another page.
    [[nodiscard]] PDFDestination on(const std::shared_ptr<PDFPage>& page) const { return {page, m_x, m_y, m_zoom}; }

    /// Null when the page is gone.
    [[nodiscard]] std::shared_ptr<PDFPage> page() const { return m_page.lock(); }

    /// The place that should come to the upper left of the window, in page coordinates. A missing value leaves that
    /// coordinate of the view as it is.
    [[nodiscard]] std::optional<double> x() const { return m_x; }
    [[nodiscard]] std::optional<double> y() const { return m_y; }

    /// The scale to show the page at, 1 being a point for a device-independent pixel. None keeps the present scale.
    [[nodiscard]] std::optional<double> zoom() const { return m_zoom; }

private:
    std::weak_ptr<PDFPage> m_page;
    std::optional<double> m_x;
    std::optional<double> m_y;
    std::optional<double> m_zoom;
};
