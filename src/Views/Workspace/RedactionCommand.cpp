#include "RedactionCommand.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "UndoManager.h"

#include <QAction>
#include <QProgressDialog>

#include <chrono>
#include <utility>

static constexpr std::chrono::milliseconds rest{200};

RedactionCommand::RedactionCommand(QAction& action, std::shared_ptr<PDFEditorDocument> document,
                                   std::function<void()> done, QWidget* window)
    : QObject(window), m_action(action), m_document(std::move(document)), m_done(std::move(done)), m_window(window) {
    m_changed.setSingleShot(true);
    m_changed.setInterval(rest);
    connect(&m_changed, &QTimer::timeout, this, &RedactionCommand::look);
    connect(&m_steps, &QTimer::timeout, this, &RedactionCommand::step);
    connect(&m_action, &QAction::triggered, this, &RedactionCommand::run);
    const PDFDocument* pdf = m_document->pdfDocument().get();
    connect(pdf, &PDFDocument::pagesChanged, this, &RedactionCommand::update);
    connect(pdf, &PDFDocument::pageContentChanged, this, &RedactionCommand::update);
}

void RedactionCommand::look() {
    if (m_isSearching)
        return; // and looks again at its end
    const PDFDocument& pdf = *m_document->pdfDocument();
    std::vector<std::shared_ptr<PDFSource>> files = RedactionApplier::unsearchedFiles(pdf);
    if (files.empty()) {
        m_action.setVisible(!RedactionApplier::markedPages(pdf).empty());
        return;
    }
    m_isSearching = true;
    m_search.start([this, files = std::move(files)](const std::stop_token& stop) {
        for (const std::shared_ptr<PDFSource>& file : files)
            RedactionApplier::search(*file, stop);
        QMetaObject::invokeMethod(this, [this] {
            m_isSearching = false;
            look();
        });
    });
}

void RedactionCommand::run() {
    constexpr int fewPages = 2; // drawn in less than half a second
    if (m_run)
        return;
    m_run = std::make_unique<RedactionApplier::Run>(*m_document);
    if (m_run->pageCount() <= fewPages) {
        while (m_run->drawNext()) {
        }
        finish();
        return;
    }
    m_progress = new QProgressDialog({}, QStringLiteral("Cancel"), 0, m_run->pageCount(), m_window);
    m_progress->setObjectName(QStringLiteral("redactionProgress"));
    m_progress->setWindowTitle(QStringLiteral("Redact"));
    m_progress->setWindowModality(Qt::WindowModal); // the pages must not change meanwhile
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    m_progress->setMinimumDuration(0);
    step();
    m_steps.start();
}

void RedactionCommand::step() {
    if (m_progress->wasCanceled()) {
        m_run.reset();
    } else if (m_run->pagesDrawn() < m_run->pageCount()) {
        m_progress->setLabelText(
            QStringLiteral("Redacting page %1 of %2").arg(m_run->pagesDrawn() + 1).arg(m_run->pageCount()));
        m_progress->setValue(m_run->pagesDrawn());
        m_run->drawNext();
        return;
    }
    m_steps.stop();
    std::exchange(m_progress, nullptr)->deleteLater();
    if (m_run)
        finish();
}

void RedactionCommand::finish() {
    m_run->finish(m_document->undoManager().get());
    m_run.reset();
    m_done();
}
