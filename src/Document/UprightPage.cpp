#include "UprightPage.h"

#include "Logging.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PDFSource.h"

#include <QPainter>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>

static constexpr PDFDisplayBox wholeBox = PDFDisplayBox::mediaBox;

static PDFPageGeometry wanted(PDFPageGeometry page, UprightPage::View view) {
    if (view == UprightPage::View::asStored) {
        page.rotation = 0;
        page.userUnit = 1;
    }
    return page;
}

UprightPage::UprightPage(const PDFPage& page, View view)
    : m_geometry(page.geometry()), m_drawn(wanted(m_geometry, view)), m_revision(page.revision()) {
    m_request.content = page.content();
    m_request.hiddenAnnotations = page.hiddenFileAnnotations();
}

UprightPage::UprightPage(const PDFPageContent& content, View view)
    : m_geometry(content.source->geometry(content.pageNumber)), m_drawn(wanted(m_geometry, view)), m_revision(0) {
    m_request.content = content;
    m_request.bareAnnotations = true;
}

std::optional<double> UprightPage::fitting(double scale, qint64 mostPixels) const {
    constexpr double longestSide = 32767; // a QPainter reaches no farther, and no recognizer
    const QSizeF size = m_drawn.displaySize(wholeBox);
    const double fits = std::min({scale, longestSide / std::max(size.width(), size.height()),
                                  std::sqrt(double(mostPixels) / (size.width() * size.height()))});
    return size.width() * fits >= 1 && size.height() * fits >= 1 ? std::optional(fits) : std::nullopt;
}

QTransform UprightPage::pageToDevice(QSize pixels) const {
    const QSizeF size = m_drawn.displaySize(wholeBox);
    return m_drawn.displayTransform(wholeBox) *
           QTransform::fromScale(pixels.width() / size.width(), pixels.height() / size.height());
}

void UprightPage::noteLiveAnnotations(const PDFPage& page) {
    m_liveAnnotations.reset();
    const auto annotations = page.liveAnnotations();
    if (annotations.empty())
        return;
    const auto recorded = std::make_shared<QPicture>();
    QPainter recorder(recorded.get());
    PDFAnnotation::drawAll(annotations, wholeBox, recorder);
    recorder.end();
    m_liveAnnotations = recorded;
}

void UprightPage::drawLiveAnnotations(QImage& image) const {
    if (!m_liveAnnotations)
        return;
    QPainter painter(&image);
    painter.setTransform(pageToDevice(image.size()));
    painter.drawPicture(0, 0, *m_liveAnnotations);
}

QImage UprightPage::image(double scale, const std::stop_token& stop) const {
    constexpr int pieceSide = 4096; // below the most that the renderer draws at once
    std::atomic<bool> cancelled = false;
    const std::stop_callback cancel(stop, [&cancelled] { cancelled = true; });
    const QSizeF pixels = m_drawn.displaySize(wholeBox) * scale;
    const QRect whole(0, 0, static_cast<int>(pixels.width()), static_cast<int>(pixels.height()));
    PageRenderRequest piece = m_request;
    piece.pageToDevice = pageToDevice(whole.size());
    const auto drawn = [&](const QRect& part) {
        piece.deviceRect = part;
        return PageRenderer::render(piece, &cancelled);
    };
    try {
        QImage image;
        if (whole.width() <= pieceSide && whole.height() <= pieceSide) {
            image = drawn(whole); // needs no second picture of some ten megabytes
        } else {
            image = QImage(whole.size(), QImage::Format_RGB32);
            QPainter painter;
            if (image.isNull() || !painter.begin(&image))
                return {};
            for (int y = 0; y < whole.height(); y += pieceSide) {
                for (int x = 0; x < whole.width(); x += pieceSide) {
                    const QImage part = drawn(QRect(x, y, pieceSide, pieceSide) & whole);
                    if (part.isNull())
                        return {};
                    painter.drawImage(x, y, part);
                }
            }
        }
        if (!image.isNull())
            drawLiveAnnotations(image);
        return image;
    } catch (const std::bad_alloc&) {
        qCWarning(Logging::document) << "not enough memory for the picture of a page";
        return {};
    }
}
