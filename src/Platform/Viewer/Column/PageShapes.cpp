#include "PageShapes.h"

#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"

#include <QElapsedTimer>

#include <map>
#include <utility>

using namespace std::chrono_literals;

/// The first pages should be drawn before the survey takes its share of the processor.
static constexpr auto surveyDelay = 150ms;
static constexpr int findingsInterval = 40; // milliseconds between two reports of the survey

PageShapes::PageShapes(QObject* parent) : QObject(parent) {
    m_surveyStart.setSingleShot(true);
    m_surveyStart.setInterval(surveyDelay);
    connect(&m_surveyStart, &QTimer::timeout, this, &PageShapes::startSurvey);
}

void PageShapes::setDocument(const std::shared_ptr<PDFDocument>& document, PDFDisplayBox box) {
    m_document = document;
    m_box = box;
    m_pages.clear();
    reload();
}

void PageShapes::reload() {
    m_survey.cancel();
    m_surveyStart.stop();
    m_pending.clear();
    ++m_generation;

    std::map<std::pair<const PDFSource*, int>, PageShape> known;
    for (const Page& page : m_pages) {
        if (page.knowledge == Knowledge::fromFile)
            known.emplace(std::pair(page.content.source.get(), page.content.pageNumber), page.shape);
    }
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    const int count = document ? document->pageCount() : 0;
    if (count == 0) {
        m_pages.clear();
        return;
    }
    const PageShape estimate = PageShape::fromGeometry(document->geometry(0), m_box);
    std::vector<Page> pages;
    pages.reserve(static_cast<std::size_t>(count));
    for (PDFPageContent& content : document->pageContents()) {
        const auto found = known.find({content.source.get(), content.pageNumber});
        if (found == known.end())
            pages.push_back({std::move(content), estimate, Knowledge::estimated});
        else
            pages.push_back({std::move(content), found->second, Knowledge::fromFile});
    }
    m_pages = std::move(pages);
    m_surveyStart.start();
}

std::vector<QSizeF> PageShapes::sizes() const {
    std::vector<QSizeF> sizes;
    sizes.reserve(m_pages.size());
    for (const Page& page : m_pages)
        sizes.push_back(page.shape.displaySize());
    return sizes;
}

bool PageShapes::setShape(Page& page, const PageShape& shape, Knowledge knowledge) {
    page.knowledge = knowledge;
    return std::exchange(page.shape, shape) != shape;
}

bool PageShapes::makeKnown(int first, int last) {
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    bool changed = false;
    for (int i = first; document && i < last; ++i) {
        const Page& page = at(i);
        if (page.knowledge == Knowledge::fromDocument)
            continue;
        // A page that nobody changed is as its file says, which the survey found out without keeping anyone waiting.
        const std::shared_ptr<PDFPage> live = document->page(i);
        if (page.knowledge == Knowledge::estimated || (live && live->isModified()))
            changed = refresh(i) || changed;
    }
    return changed;
}

bool PageShapes::refresh(int index) {
    const std::shared_ptr<PDFDocument> document = m_document.lock();
    if (!document || index < 0 || index >= count())
        return false;
    const std::shared_ptr<PDFPage> live = document->page(index);
    const Knowledge knowledge = live && live->isModified() ? Knowledge::fromDocument : Knowledge::fromFile;
    return setShape(m_pages[static_cast<std::size_t>(index)], PageShape::fromGeometry(document->geometry(index), m_box),
                    knowledge);
}

void PageShapes::startSurvey() {
    std::vector<std::pair<std::size_t, PDFPageContent>> unknown;
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        if (m_pages[i].knowledge == Knowledge::estimated && m_pages[i].content.source)
            unknown.emplace_back(i, m_pages[i].content);
    }
    if (unknown.empty())
        return;
    m_survey.start(
        [this, generation = m_generation, box = m_box, unknown = std::move(unknown)](const std::stop_token& stop) {
            std::vector<Finding> findings;
            const auto report = [&] {
                QMetaObject::invokeMethod(
                    this, [this, generation, findings = std::exchange(findings, {})] { merge(generation, findings); },
                    Qt::QueuedConnection);
            };
            QElapsedTimer sinceReport;
            sinceReport.start();
            for (const auto& [index, content] : unknown) {
                if (stop.stop_requested())
                    return;
                findings.push_back({index, PageShape::fromGeometry(content.source->geometry(content.pageNumber), box)});
                if (sinceReport.hasExpired(findingsInterval)) {
                    report();
                    sinceReport.restart();
                }
            }
            report();
        });
}

void PageShapes::merge(int generation, const std::vector<Finding>& findings) {
    if (generation != m_generation)
        return;
    bool news = false;
    for (const Finding& finding : findings) {
        Page& page = m_pages[finding.index];
        if (page.knowledge != Knowledge::estimated)
            continue;
        if (page.shape == finding.shape) {
            page.knowledge = Knowledge::fromFile;
        } else {
            m_pending.push_back(finding);
            news = true;
        }
    }
    if (news)
        Q_EMIT surveyed();
}

void PageShapes::takeSurveyed() {
    for (const Finding& finding : std::exchange(m_pending, {})) {
        Page& page = m_pages[finding.index];
        if (page.knowledge == Knowledge::estimated)
            setShape(page, finding.shape, Knowledge::fromFile);
    }
}
