#pragma once

#include "PDFPageGeometry.h"
#include "PageRenderer.h"

#include <QImage>
#include <QPicture>
#include <QSizeF>

#include <memory>
#include <optional>
#include <stop_token>

class PDFPage;

/// All of a page as it is at one moment, out to its media box: for workers that draw it whole. It stands upright, as it
/// is shown, unless it is wanted as it is stored. No live object is in it.
class UprightPage {
public:
    enum class View {
        asShown, ///< turned, in points
        asStored ///< not turned, one unit of page coordinates for each point that is spoken of
    };

    /// Takes note of what the page shows; main thread.
    explicit UprightPage(const PDFPage& page, View view = View::asShown);
    /// A page that nobody has changed, with all annotations of its file; any thread.
    UprightPage(const PDFPageContent& content, View view);

    /// Of the page when it was noted (`PDFPage::revision`).
    [[nodiscard]] quint64 revision() const { return m_revision; }
    [[nodiscard]] const PDFPageContent& content() const { return m_request.content; }
    [[nodiscard]] const PDFPageGeometry& geometry() const { return m_geometry; }

    /// The scale, in pixels for a point, of a picture that is wanted at another one and may have so many pixels. None
    /// for a page so narrow that nothing of it would be left.
    [[nodiscard]] std::optional<double> fitting(double scale, qint64 mostPixels) const;

    /// Annotations that draw themselves are known only once the page has been drawn. Main thread; what was noted fits
    /// while the page has the same revision.
    void noteLiveAnnotations(const PDFPage& page);

    /// At a scale that fits, with the live annotations that were noted. Null when the page can't be drawn or nobody
    /// wants it any more. Any thread, one at a time.
    [[nodiscard]] QImage image(double scale, const std::stop_token& stop) const;
    /// Whether some were noted.
    [[nodiscard]] bool hasLiveAnnotations() const { return m_liveAnnotations != nullptr; }
    /// Draws the live annotations over a picture at a scale that fits. One thread at a time.
    void drawLiveAnnotations(QImage& image) const;

private:
    [[nodiscard]] QTransform pageToDevice(QSize pixels) const;

    PageRenderRequest m_request; // but for its transform and its part
    PDFPageGeometry m_geometry;
    PDFPageGeometry m_drawn; // the same as it is wanted
    quint64 m_revision;
    std::shared_ptr<const QPicture> m_liveAnnotations; // in page coordinates; null for none
};
