#include "PDFPage.h"

#include "AnnotationReader.h"
#include "FlowingText.h"
#include "ImagePage.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFSelection.h"
#include "PDFSource.h"
#include "PageFont.h"
#include "PageText.h"
#include "QuilloAssert.h"
#include "SourceEngine.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

namespace {

quint64 newIdentity() {
    static std::atomic<quint64> last{0};
    return ++last;
}

std::shared_ptr<PDFPage> pageOfBytes(const QByteArray& bytes) {
    return bytes.isEmpty() ? nullptr : std::make_shared<PDFPage>(PDFPageContent{PDFSource::openMadePage(bytes), 0});
}

} // namespace

PDFPage::PDFPage(PDFPageContent content) : m_identity(newIdentity()), m_content(std::move(content)) {
    QUILLO_ASSERT(m_content.source, "a page has a source");
}

PDFPage::~PDFPage() = default;

std::shared_ptr<PDFPage> PDFPage::fromImage(const QImage& image, QSizeF size) {
    return pageOfBytes(ImagePage::fromImage(image, ImagePage::sized(size)));
}

std::shared_ptr<PDFPage> PDFPage::fromImage(const QImage& image, const PDFPage& replaced) {
    const QByteArray bytes = ImagePage::fromImage(image, replaced.geometry());
    return bytes.isEmpty() ? nullptr : replacing(replaced, PDFSource::openMadePage(bytes));
}

std::shared_ptr<PDFPage> PDFPage::replacing(const PDFPage& replaced, const std::shared_ptr<PDFSource>& source) {
    auto page = std::make_shared<PDFPage>(PDFPageContent{source, 0});
    page->m_place = replaced.place();
    return page;
}

std::shared_ptr<PDFPage> PDFPage::fromJpeg(const QByteArray& jpeg, QSizeF size) {
    return pageOfBytes(ImagePage::fromJpeg(jpeg, ImagePage::sized(size)));
}

std::shared_ptr<PDFPage> PDFPage::copy() const {
    auto copied = plainCopy();
    copied->m_origin = m_document ? m_document->origin() : m_origin;
    copied->m_original = m_document ? m_identity : m_original;
    return copied;
}

std::shared_ptr<PDFPage> PDFPage::plainCopy() const {
    auto copied = std::make_shared<PDFPage>(m_content);
    copied->m_place = m_place;
    copied->m_rotation = m_rotation;
    copied->m_annotationsLoaded = m_annotationsLoaded;
    copied->m_fileAnnotations = m_fileAnnotations;
    copied->m_fileLooks = m_fileLooks;
    for (const auto& annotation : m_annotations) {
        copied->m_annotations.push_back(annotation->copy());
        copied->m_annotations.back()->m_page = copied;
    }
    return copied;
}

QString PDFPage::label() const {
    const auto label = place().source->pageLabels().of(place().pageNumber);
    return label ? label->text() : QString();
}

PDFPageGeometry PDFPage::geometry() const {
    PDFPageGeometry geometry = m_content.source->geometry(m_content.pageNumber);
    if (m_rotation)
        geometry.rotation = *m_rotation;
    return geometry;
}

QRectF PDFPage::bounds(PDFDisplayBox box) const {
    return geometry().box(box);
}

int PDFPage::rotation() const {
    return geometry().rotation;
}

void PDFPage::setRotation(int degrees) {
    const int turned = ((((degrees % 360) + 360 + 45) / 90) * 90) % 360;
    if (turned == rotation())
        return;
    m_rotation = turned;
    noteChange();
}

double PDFPage::userUnit() const {
    return geometry().userUnit;
}

QSizeF PDFPage::displaySize(PDFDisplayBox box) const {
    return geometry().displaySize(box);
}

QTransform PDFPage::displayTransform(PDFDisplayBox box) const {
    return geometry().displayTransform(box);
}

void PDFPage::noteChange(const QRectF& area) {
    ++m_revision;
    m_hiddenFileAnnotations.reset();
    if (m_document)
        Q_EMIT m_document->pageContentChanged(this, area);
}

// Text

std::shared_ptr<const PageText> PDFPage::text() const {
    return m_content.source->text(m_content.pageNumber);
}

QString PDFPage::string() const {
    return FlowingText(*text()).string();
}

std::optional<PDFSelection> PDFPage::selectionOf(int start, int end) const {
    if (end <= start)
        return std::nullopt;
    return PDFSelection({{std::const_pointer_cast<PDFPage>(shared_from_this()), start, end}});
}

std::optional<PDFSelection> PDFPage::selectionForLine(QPointF point) const {
    const auto words = text();
    const int line = words->lineContaining(point);
    if (line < 0)
        return std::nullopt;
    return selectionOf(words->lines[std::size_t(line)].start, words->lines[std::size_t(line)].end);
}

std::optional<PDFSelection> PDFPage::selection(QPointF from, QPointF to) const {
    const auto words = text();
    const auto [start, end] = std::minmax({words->gapNearest(from), words->gapNearest(to)});
    return selectionOf(start, end);
}

std::optional<PDFSelection> PDFPage::selectAll() const {
    return selectionOf(0, int(text()->string.size()));
}

std::optional<QFont> PDFPage::font(const QString& wanted) const {
    const auto words = text();
    const qsizetype offset = wanted.isEmpty() ? -1 : words->string.indexOf(wanted);
    if (offset < 0)
        return std::nullopt;
    const PageText::Glyph& glyph = words->glyphs[std::size_t(offset)];
    if (!(glyph.size > 0) || glyph.font >= words->fonts.size())
        return std::nullopt; // the break between two lines
    return PageFont::nearest(words->fonts[glyph.font], double(glyph.size));
}

// Annotations

void PDFPage::loadAnnotations() const {
    if (m_annotationsLoaded)
        return;
    m_annotationsLoaded = true;
    auto values = AnnotationReader::read(m_content.source->engine(), m_content.pageNumber);
    const std::weak_ptr<PDFPage> self = std::const_pointer_cast<PDFPage>(shared_from_this());
    const std::vector<std::shared_ptr<PDFAnnotation>> onTop = std::exchange(m_annotations, {});
    for (auto& [place, read] : values) {
        auto annotation = std::make_shared<PDFAnnotation>(std::move(read), PDFAnnotationOrigin{m_content, place});
        annotation->m_page = self;
        m_fileAnnotations.push_back(place);
        if (annotation->values().hasAppearance)
            m_fileLooks.push_back(place);
        m_annotations.push_back(std::move(annotation));
    }
    m_annotations.insert(m_annotations.end(), onTop.begin(), onTop.end());
    m_hiddenFileAnnotations.reset();
}

const std::vector<std::shared_ptr<PDFAnnotation>>& PDFPage::annotations() const {
    loadAnnotations();
    return m_annotations;
}

void PDFPage::addAnnotation(const std::shared_ptr<PDFAnnotation>& annotation) {
    insertAnnotation(annotation, int(annotations().size()));
}

void PDFPage::insertAnnotation(const std::shared_ptr<PDFAnnotation>& annotation, int index) {
    loadAnnotations();
    put(annotation, index);
}

void PDFPage::putOnTop(const std::shared_ptr<PDFAnnotation>& annotation) {
    put(annotation, int(m_annotations.size()));
}

void PDFPage::put(const std::shared_ptr<PDFAnnotation>& annotation, int index) {
    QUILLO_ASSERT(annotation, "an annotation to add");
    if (annotation->page())
        return;
    m_annotations.insert(m_annotations.begin() + std::clamp(index, 0, int(m_annotations.size())), annotation);
    annotation->m_page = weak_from_this();
    annotation->standOn(geometry());
    noteChange(annotation->drawnArea());
}

int PDFPage::removeAnnotation(const std::shared_ptr<PDFAnnotation>& annotation) {
    loadAnnotations();
    return takeOut(annotation);
}

void PDFPage::takeOff(const std::shared_ptr<PDFAnnotation>& annotation) {
    takeOut(annotation);
}

/// Of those that are known; returns the place among them, or -1.
int PDFPage::takeOut(const std::shared_ptr<PDFAnnotation>& annotation) {
    const auto found = std::find(m_annotations.begin(), m_annotations.end(), annotation);
    if (found == m_annotations.end())
        return -1;
    const int index = int(found - m_annotations.begin());
    const std::shared_ptr<PDFAnnotation> removed = *found; // `annotation` may be the list's own element
    m_annotations.erase(found);
    removed->m_page.reset();
    noteChange(removed->drawnArea());
    return index;
}

std::shared_ptr<PDFAnnotation> PDFPage::annotation(QPointF point) const {
    const auto& all = annotations();
    const auto found = std::find_if(all.rbegin(), all.rend(), [point](const auto& candidate) {
        return candidate->shouldDisplay() && candidate->type() != PDFAnnotationSubtype::popup &&
               candidate->bounds().contains(point) && !candidate->coversPage();
    });
    return found == all.rend() ? nullptr : *found;
}

bool PDFPage::isFromHere(const PDFAnnotation& annotation) const {
    return annotation.origin() && annotation.origin()->content == m_content;
}

bool PDFPage::isModified() const {
    if (m_rotation && *m_rotation != m_content.source->geometry(m_content.pageNumber).rotation)
        return true;
    if (!m_annotationsLoaded)
        return !m_annotations.empty();
    return m_annotations.size() != m_fileAnnotations.size() ||
           !std::equal(m_annotations.begin(), m_annotations.end(), m_fileAnnotations.begin(),
                       [this](const auto& annotation, int place) {
                           return !annotation->isModified() && isFromHere(*annotation) &&
                                  annotation->origin()->index == place;
                       });
}

std::vector<int> PDFPage::hiddenFileAnnotations() const {
    if (!m_annotationsLoaded)
        return {};
    if (!m_hiddenFileAnnotations) {
        std::vector<int> shown;
        for (const auto& annotation : m_annotations)
            if (!annotation->isModified() && isFromHere(*annotation))
                shown.push_back(annotation->origin()->index);
        if (!std::is_sorted(shown.begin(), shown.end())) // which they are but where the order was changed
            std::sort(shown.begin(), shown.end());
        m_hiddenFileAnnotations.emplace();
        std::set_difference(m_fileLooks.begin(), m_fileLooks.end(), shown.begin(), shown.end(),
                            std::back_inserter(*m_hiddenFileAnnotations));
    }
    return *m_hiddenFileAnnotations;
}

std::vector<std::shared_ptr<PDFAnnotation>> PDFPage::liveAnnotations() const {
    // Reading annotations takes its time on a page full of links, of which none draws itself.
    if (m_annotationsLoaded || m_content.source->engine().hasBareAnnotations(m_content.pageNumber))
        loadAnnotations();
    std::vector<std::shared_ptr<PDFAnnotation>> live;
    std::copy_if(m_annotations.begin(), m_annotations.end(), std::back_inserter(live), [this](const auto& annotation) {
        return annotation->shouldDisplay() && (annotation->drawsItself() || !isFromHere(*annotation));
    });
    return live;
}
