#include "CrashRecovery.h"

#include "AnnotatingPDFView.h"
#include "ContentView.h"
#include "DocumentWindow.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFViewCoordinator.h"
#include "PassingNotice.h"
#include "RecoverySetting.h"
#include "RecoveryStore.h"
#include "RecoveryWindow.h"
#include "UserDefaults.h"
#include "WindowPresenter.h"

#include <algorithm>

static constexpr std::chrono::seconds noticeTime{8};

CrashRecovery::CrashRecovery(DocumentController& controller, WindowPresenter& presenter, UserDefaults& defaults,
                             QObject* parent)
    : QObject(parent), m_presenter(presenter), m_recovery(controller, RecoveryStore::standardFolder()),
      m_lostDocuments(controller, m_recovery) {
    m_recovery.setCurrentPage([this](const PDFEditorDocument& document) {
        const PDFEditorWorkspaceView* shown = workspace(document);
        return shown ? shown->coordinator().currentPageIndex() : std::nullopt;
    });
    m_recovery.setOn(RecoverySetting::isOn(defaults));
    connect(&defaults, &UserDefaults::changed, this, [this, &defaults](const QString& key) {
        if (key == RecoverySetting::key())
            m_recovery.setOn(RecoverySetting::isOn(defaults));
    });
    connect(&m_recovery, &DocumentRecovery::writingFailed, this, &CrashRecovery::tell);
}

CrashRecovery::~CrashRecovery() = default;

PDFEditorWorkspaceView* CrashRecovery::workspace(const PDFEditorDocument& document) const {
    const DocumentWindow* window = m_presenter.documentWindow();
    const ContentView* view = window ? window->contentView(document) : nullptr;
    return view ? view->workspace() : nullptr;
}

/// Where there is nothing to show it on, it isn't worth a window.
void CrashRecovery::tell(const QString& sentence) {
    const DocumentWindow* window = m_presenter.documentWindow();
    const ContentView* view = window ? window->currentContentView() : nullptr;
    if (view && view->workspace())
        view->workspace()->notice().announce(sentence, noticeTime);
}

void CrashRecovery::offerLostDocuments() {
    const std::vector<LostDocument> lost = m_lostDocuments.take();
    if (lost.empty())
        return;
    m_window = std::make_unique<RecoveryWindow>(lost);
    connect(m_window.get(), &RecoveryWindow::recoverRequested, this, [this, lost](const QString& id) {
        const auto found = std::find_if(lost.begin(), lost.end(), [&id](const auto& each) { return each.id == id; });
        if (found != lost.end())
            recover(*found);
    });
    connect(m_window.get(), &RecoveryWindow::deleteRequested, this, [this](const QString& id) {
        m_lostDocuments.discard(id);
        m_window->removeDocument(id);
    });
    connect(m_window.get(), &QDialog::finished, this, [this] {
        m_lostDocuments.release();
        m_window.release()->deleteLater();
    });
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void CrashRecovery::recover(const LostDocument& lost) {
    m_lostDocuments.recover(
        lost.id, [this, lost](const auto& document, const QString& error) { finishRecovery(lost, document, error); });
}

void CrashRecovery::finishRecovery(const LostDocument& lost, const std::shared_ptr<PDFEditorDocument>& document,
                                   const QString& error) {
    if (const PDFEditorWorkspaceView* shown = document ? workspace(*document) : nullptr) {
        const std::shared_ptr<PDFPage> page = document->pdfDocument()->page(lost.description.pageIndex);
        // Later, since the viewer has no layout yet.
        QMetaObject::invokeMethod(
            shown->pdfView(), [view = shown->pdfView(), page] { view->goToPage(page); }, Qt::QueuedConnection);
    }
    if (!m_window)
        return;
    if (!document) {
        m_window->showFailure(lost.id, error);
        return;
    }
    m_window->removeDocument(lost.id);
    if (m_window) { // there are more, now below the document
        m_window->raise();
        m_window->activateWindow();
    }
}
