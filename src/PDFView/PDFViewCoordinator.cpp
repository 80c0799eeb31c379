#include "PDFViewCoordinator.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "RecentPageStore.h"

PDFViewCoordinator::PDFViewCoordinator(UserDefaults& defaults, QObject* parent)
    : QObject(parent), m_defaults(defaults) {}

PDFViewCoordinator::~PDFViewCoordinator() {
    disconnect(m_pageChangeObserver);
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

bool PDFViewCoordinator::applyMarkup(MarkupAction action) {
    return m_pdfView && m_pdfView->applyMarkup(info(action).subtype);
}

void PDFViewCoordinator::observePageChanges() {
    disconnect(m_pageChangeObserver);
    updatePageIndicator();
    if (m_pdfView) {
        m_pageChangeObserver =
            connect(m_pdfView, &PDFView::pageChanged, this, &PDFViewCoordinator::updatePageIndicator);
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
    publish(u"%1 of %2"_qs.arg(index + 1).arg(document->pageCount()), index);
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
