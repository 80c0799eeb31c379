#include "RecognizedPage.h"

#include "GrayPicture.h"
#include "OCRTextLayerApplier.h"
#include "PDFAnnotation.h"
#include "PDFAnnotationSubtype.h"
#include "PDFPage.h"
#include "PDFPageRasterizer.h"
#include "PDFSource.h"
#include "RecognizerProcess.h"
#include "SearchablePage.h"

#include <QStringList>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <utility>

namespace {

/// A sheet of 42 by 59 cm at 300 dots per inch; larger ones are read less finely, since two workers read at once.
constexpr qint64 mostPixelsToRead = 36'000'000;

bool isInvisible(const PDFAnnotation& annotation) {
    return !annotation.shouldDisplay() || annotation.type() == PDFAnnotationSubtype::popup ||
           (annotation.type() == PDFAnnotationSubtype::link && annotation.border() &&
            annotation.border()->lineWidth == 0);
}

} // namespace

RecognizedPage::RecognizedPage(const PDFPage& page) : m_page(page) {}

void RecognizedPage::draw(const std::stop_token& stop) {
    const auto scale = m_page.fitting(OCRTextLayerApplier::readingScale, mostPixelsToRead);
    if (!scale)
        return;
    m_scale = *scale;
    // One page after the other: drawing is quick beside reading, and takes several times the memory.
    static std::timed_mutex drawing;
    std::unique_lock turn(drawing, std::defer_lock);
    while (!turn.try_lock_for(std::chrono::milliseconds(20)))
        if (stop.stop_requested())
            return;
    m_picture = m_page.image(m_scale, stop);
    keepGray();
}

void RecognizedPage::keepGray() {
    if (QImage gray = GrayPicture::of(m_picture); !gray.isNull())
        m_picture = std::move(gray);
}

bool RecognizedPage::noteAnnotations(const PDFPage& page) {
    if (page.revision() != m_page.revision())
        return false;
    m_page.noteLiveAnnotations(page);
    const auto& annotations = page.annotations();
    m_showsContentOnly = std::all_of(annotations.begin(), annotations.end(),
                                     [](const auto& annotation) { return isInvisible(*annotation); });
    return true;
}

QImage RecognizedPage::pictureToKeep(const std::stop_token& stop) const {
    const double finest = SearchablePage::finestImage(m_page.content());
    const double wanted = std::clamp(finest, OCRTextLayerApplier::renderScale, OCRTextLayerApplier::readingScale);
    const auto scale = m_page.fitting(wanted, PDFPageRasterizer::maximumPixelCount);
    constexpr double nearlyOne = 0.99; // not worth drawing again
    if (!scale || (m_scale >= *scale && m_scale * nearlyOne <= *scale))
        return m_picture;
    return m_page.image(*scale, stop);
}

void RecognizedPage::read(const std::stop_token& stop) {
    constexpr double pointsPerInch = 72;
    if (m_page.hasLiveAnnotations()) {
        m_picture = m_picture.convertToFormat(QImage::Format_RGB32);
        m_page.drawLiveAnnotations(m_picture);
        keepGray();
    }
    std::vector<SearchablePage::Line> lines;
    QStringList texts;
    auto found = RecognizerProcess::recognize(m_picture, static_cast<int>(m_scale * pointsPerInch), stop);
    if (!found)
        return;
    for (TextRecognizer::Line& line : *found) {
        texts.append(line.text);
        lines.push_back({std::move(line.text), line.box});
    }
    if (stop.stop_requested())
        return;
    m_text = texts.join(QLatin1Char('\n'));
    QByteArray bytes;
    if (m_showsContentOnly)
        bytes = SearchablePage::fromOwnPicture(m_page.content(), m_page.geometry(), lines);
    if (bytes.isEmpty())
        bytes = SearchablePage::fromPicture(pictureToKeep(stop), m_page.geometry(), lines);
    m_picture = {};
    if (!bytes.isEmpty() && !stop.stop_requested())
        m_source = PDFSource::openMadePage(bytes);
}
