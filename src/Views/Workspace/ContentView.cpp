#include "ContentView.h"

#include "AnnotatingPDFView.h"
#include "DocumentController.h"
#include "ErrorSentence.h"
#include "FileOpenRouter.h"
#include "FilePath.h"
#include "FileReading.h"
#include "FileStamp.h"
#include "LandingView.h"
#include "Logging.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFEditorWorkspaceView.h"
#include "PDFError.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PDFUnlocker.h"
#include "ToolState.h"
#include "UnlockDocumentView.h"

#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

/// Where the reader is, in terms that hold for another reading of the same file.
struct ReaderPlace {
    int pageIndex;
    QPointF upperLeft; ///< of the view, on that page
    double scale;
    bool autoScales;

    static std::optional<ReaderPlace> of(const PDFView& view) {
        const std::shared_ptr<PDFPage> page = view.pageAt({0, 0}, true);
        if (!page)
            return std::nullopt;
        return ReaderPlace{view.document()->index(page.get()), view.convertToPage(QPointF(0, 0), *page),
                           view.scaleFactor(), view.autoScales()};
    }

    void restore(PDFView& view) const {
        const PDFDocument& document = *view.document();
        if (!autoScales)
            view.setScaleFactor(scale);
        if (const std::shared_ptr<PDFPage> page = document.page(std::min(pageIndex, document.pageCount() - 1)))
            view.goToDestination(PDFDestination(page, upperLeft));
    }
};

/// What another thread has read of a file.
struct ReadFile {
    std::shared_ptr<PDFSource> source; ///< null when it isn't a PDF file that can be read
    std::optional<FileStamp> stamp;
    QString sentence; ///< when it failed for another reason
};

ReadFile read(const QUrl& url) {
    ReadFile result;
    try {
        result.stamp = FileStamp::of(url.toLocalFile());
        result.source = PDFDocument::openSource(url.toLocalFile());
    } catch (const PDFError& error) {
        qCWarning(Logging::document) << "opening in place failed:" << Logging::causes(error);
    } catch (...) {
        result.sentence = sentenceOfCurrentError("opening in place");
    }
    return result;
}

} // namespace

ContentView::ContentView(std::shared_ptr<PDFEditorDocument> document, DocumentController& controller,
                         UserDefaults& defaults, AskPassword askPassword, QWidget* parent)
    : QWidget(parent), m_document(std::move(document)), m_controller(controller), m_defaults(defaults),
      m_askPassword(std::move(askPassword)), m_toolState(std::make_shared<ToolState>(&defaults)),
      m_layout(new QVBoxLayout(this)) {
    setObjectName(QStringLiteral("contentView"));
    m_layout->setContentsMargins(0, 0, 0, 0);
    connect(m_document.get(), &PDFEditorDocument::objectWillChange, this, &ContentView::decideContent);
    connect(m_document.get(), &Document::fileURLChanged, this, [this](const QUrl& fileURL) {
        if (m_workspace)
            m_workspace->setFileURL(fileURL);
    });
    decideContent();
}

ContentView::~ContentView() = default;

void ContentView::decideContent() {
    const std::shared_ptr<PDFDocument>& pdfDocument = m_document->pdfDocument();
    if (pdfDocument->isLocked()) {
        if (m_content == Content::unlock)
            return;
        auto* unlock = new UnlockDocumentView(m_document);
        connect(unlock, &UnlockDocumentView::closeRequested, this, &ContentView::closeRequested);
        replaceContent(Content::unlock, unlock);
    } else if (pdfDocument->pageCount() == 0) {
        if (m_content != Content::landing)
            replaceContent(Content::landing,
                           new LandingView(m_controller, [this](const QUrl& url) { openInPlace(url); }));
    } else if (m_content != Content::workspace || m_workspaceDocument.lock() != pdfDocument) {
        const auto place = m_workspace ? ReaderPlace::of(*m_workspace->pdfView()) : std::nullopt;
        auto* workspace = new PDFEditorWorkspaceView(m_document, m_document->originURL(), m_toolState, m_defaults);
        connect(workspace, &PDFEditorWorkspaceView::settingsRequested, this, &ContentView::settingsRequested);
        m_workspaceDocument = pdfDocument;
        if (m_workspace)
            workspace->takePanelsOf(*m_workspace);
        replaceContent(Content::workspace, workspace);
        if (place) {
            // Later, since the viewer has no layout yet.
            PDFView* const view = workspace->pdfView();
            QMetaObject::invokeMethod(
                view, [view, place] { place->restore(*view); }, Qt::QueuedConnection);
        }
    }
}

void ContentView::replaceContent(Content content, QWidget* view) {
    QWidget* const former = m_view;
    const bool hadFocus = former && former->isAncestorOf(focusWidget());
    m_content = content;
    m_view = view;
    m_workspace = qobject_cast<PDFEditorWorkspaceView*>(view);
    if (former) {
        // The change may come from one of its own buttons.
        m_layout->removeWidget(former);
        former->hide();
        former->deleteLater();
    }
    m_layout->addWidget(view);
    view->show();
    setFocusProxy(view);
    if (hadFocus)
        view->setFocus();
    Q_EMIT contentChanged();
}

void ContentView::openInPlace(const QUrl& url) {
    if (FileOpenRouter::classify(url) == FileOpenRouter::Kind::track1) {
        FileOpenRouter::openInPlaceOf(m_document, url);
        return;
    }
    m_reading = m_controller.readingOf(url); // a file that was chosen before is given up
    connect(m_reading.get(), &FileReading::givenUp, this, [this] { m_reading.release()->deleteLater(); });
    m_reading->start([url] { return std::pair(read(url), FilePath::canonical(url)); },
                     [this, url](const std::pair<ReadFile, QString>& result) {
                         const auto reading = std::move(m_reading); // with what is running here, until its end
                         const auto& [file, path] = result;
                         if (m_controller.documentAt(path))
                             m_controller.openDocument(url, true);
                         else if (!file.sentence.isEmpty())
                             failToOpen(url, file.sentence);
                         else if (file.source && m_document->pdfDocument()->pageCount() == 0)
                             fill(url, file.source, file.stamp);
                     });
}

void ContentView::failToOpen(const QUrl& url, const QString& sentence) {
    Q_EMIT openingFailed(QStringLiteral("“%1” couldn't be opened.").arg(url.fileName()), sentence);
}

void ContentView::fill(const QUrl& url, const std::shared_ptr<PDFSource>& source,
                       const std::optional<FileStamp>& stamp) {
    std::shared_ptr<PDFDocument> pdfDocument;
    bool wasLocked = false;
    const QPointer<ContentView> self(this);
    try {
        pdfDocument = PDFDocument::fromSource(source);
        wasLocked = pdfDocument->isLocked();
        if (!PDFUnlocker::promptAndUnlock(*pdfDocument, [this] { return m_askPassword(window()); }) || !self)
            return;
    } catch (...) {
        const QString sentence = sentenceOfCurrentError("opening in place");
        if (self)
            failToOpen(url, sentence);
        return;
    }
    m_document->becomeFile(url, stamp);
    m_document->setWasPasswordProtected(wasLocked);
    m_document->setPdfDocument(pdfDocument);
    m_controller.noteNewRecentDocumentURL(url);
    Q_EMIT openedInPlace();
}
