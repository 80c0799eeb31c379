#include "PDFViewCoordinator.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "RecentPageStore.h"
#include "RecentScaleStore.h"

#include <chrono>

PDFViewCoordinator::PDFViewCoordinator(UserDefaults& defaults, QObject* parent)
    : QObject(parent), m_defaults(defaults) {
    using namespace std::chrono_literals;
    m_scaleRest.setSingleShot(true);
    m_scaleRest.setInterval(300ms);
    connect(&m_scaleRest, &QTimer::timeout, this, &PDFViewCoordinator::rememberScale);
}

PDFViewCoordinator::~PDFViewCoordinator() {
    disconnect(m_pageChangeObserver);
    disconnect(m_scaleObserver);
    if (m_scaleRest.isActive())
        rememberScale();
}

AnnotatingPDFView* PDFViewCoordinator::pdfView() const {
    return m_pdfView;
}

void PDFViewCoordinator::setPdfView(AnnotatingPDFView* view) {
    m_pdfView = view;
}

std::optional<int> PDFViewCoordinator::rememberedPageIndex(const QUrl& fileURL) const {
    return RecentPageStore::pageIndex(m_defaults, fileURL);
}

std::optional<double> PDFViewCoordinator::rememberedScale(const QUrl& fileURL) const {
    return RecentScaleStore::scale(m_defaults, fileURL);
}

void PDFViewCoordinator::noteScale() {
    m_scale = m_pdfView->autoScales() ? std::nullopt : std::optional(m_pdfView->scaleFactor());
    m_scaleRest.start();
}

void PDFViewCoordinator::rememberScale() {
    m_scaleRest.stop();
    if (!m_fileURL.isEmpty())
        RecentScaleStore::setScale(m_defaults, m_scale, m_fileURL);
}

bool PDFViewCoordinator::applyMarkup(MarkupAction action) {
    return m_pdfView && m_pdfView->applyMarkup(info(action).subtype);
}

void PDFViewCoordinator::observePageChanges() {
    disconnect(m_pageChangeObserver);
    updatePageIndicator();
    if (m_pdfView) {
        m_pageChangeObserver =
            connect(m_pdfView, &PDFView::pageChanged, this, &PDFViewCoordinator::updatePageIndicator);
        disconnect(m_scaleObserver);
        m_scaleObserver = connect(m_pdfView, &PDFView::scaleChanged, this, &PDFViewCoordinator::noteScale);
    }
}

void PDFViewCoordinator::updatePageIndicator() {
    const std::shared_ptr<PDFDocument> document = m_pdfView ? m_pdfView->document() : nullptr;
    const std::shared_ptr<PDFPage> page = document ? m_pdfView->currentPage() : nullptr;
    if (!page) {
        publish(QString(), std::nullopt);
        return;
    }
    const int index = document->index(page.get());
    publish(QStringLiteral("%1 of %2").arg(index + 1).arg(document->pageCount()), index);
    if (!m_fileURL.isEmpty())
        RecentPageStore::setPageIndex(m_defaults, index, m_fileURL);
}

void PDFViewCoordinator::publish(const QString& pageIndicator, std::optional<int> pageIndex) {
    const bool indicatorDiffers = m_pageIndicator != pageIndicator;
    const bool indexDiffers = m_currentPageIndex != pageIndex;
    m_pageIndicator = pageIndicator;
    m_currentPageIndex = pageIndex;
    if (indicatorDiffers)
        Q_EMIT pageIndicatorChanged(m_pageIndicator);
    if (indexDiffers)
        Q_EMIT currentPageIndexChanged();
}
