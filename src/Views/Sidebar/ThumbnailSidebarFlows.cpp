#include "AnnotatingPDFView.h"
#include "DroppedFile.h"
#include "ErrorSentence.h"
#include "FrozenCopies.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFUnlocker.h"
#include "PDFViewCoordinator.h"
#include "PageFiles.h"
#include "PageMimeData.h"
#include "PasswordPrompt.h"
#include "PlainText.h"
#include "SavePanel.h"
#include "SlowWork.h"
#include "ThumbnailList.h"
#include "ThumbnailModel.h"
#include "ThumbnailSidebar.h"

#include <QDir>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QPointer>

#include <algorithm>
#include <utility>

static UndoManager* undoManagerOf(const PDFEditorDocument& document) {
    return document.undoManager().get();
}

// Pages of this document

void ThumbnailSidebar::pagesHaveChanged() {
    if (AnnotatingPDFView* view = m_coordinator.pdfView())
        view->layoutDocumentView();
    m_list->model().refresh();
}

void ThumbnailSidebar::deletePages(const PageIndices& indices) {
    if (indices.empty())
        return;
    m_document->commitEditing();
    PageOperations::deletePages(*m_document, indices, undoManagerOf(*m_document));
    pagesHaveChanged();
    m_list->clearSelection();
    if (const int count = m_list->model().rowCount(); count > 0)
        m_list->setFocusedRow(std::min(*indices.begin(), count - 1));
    Q_EMIT announced(indices.size() == 1 ? QStringLiteral("Page %1 deleted").arg(*indices.begin() + 1)
                                         : QStringLiteral("%1 pages deleted").arg(indices.size()));
}

void ThumbnailSidebar::movePages(const PageIndices& indices, int gap) {
    const int place = std::clamp(gap, 0, m_document->pdfDocument()->pageCount());
    m_document->commitEditing();
    PageOperations::movePages(*m_document, indices, place, undoManagerOf(*m_document));
    pagesHaveChanged();
    announceMove(indices, place);
}

void ThumbnailSidebar::announceMove(const PageIndices& from, int gap) {
    const auto count = static_cast<int>(from.size());
    const int first = gap - static_cast<int>(std::distance(from.begin(), from.lower_bound(gap)));
    if (count == 0 || (*from.begin() == first && *from.rbegin() == first + count - 1))
        return; // they stayed where they were
    m_list->scrollTo(m_list->model().index(first));
    if (count == 1)
        Q_EMIT announced(QStringLiteral("Page %1 is now page %2").arg(*from.begin() + 1).arg(first + 1));
    else
        Q_EMIT announced(
            QStringLiteral("%1 pages moved: they are now pages %2 to %3").arg(count).arg(first + 1).arg(first + count));
}

bool ThumbnailSidebar::handleDrop(const QMimeData& dragged, int gap) {
    if (const PageMimeData* pages = PageMimeData::from(&dragged)) {
        if (pages->isOf(*m_document)) {
            const std::vector<int> indices = pages->indices();
            movePages({indices.begin(), indices.end()}, gap);
        } else if (const auto copies = pages->copies()) {
            bringIn(*copies, gap);
        }
        return true;
    }
    if (const auto index = PageMimeData::indexInText(dragged)) {
        if (*index >= 0 && *index < m_document->pdfDocument()->pageCount())
            movePages({*index}, gap);
        return true;
    }
    QList<QUrl> files;
    for (const QUrl& file : PageFiles::pdfFiles(dragged))
        if (const auto kept = DroppedFile::keep(file)) // it is read when the drag has long ended
            files.append(*kept);
    if (files.isEmpty())
        return false;
    readFiles(files, [this, gap](const Documents& documents) {
        int place = gap;
        for (const auto& document : documents) {
            bringIn(*document, place);
            place += document->pageCount();
        }
    });
    return true;
}

void ThumbnailSidebar::bringIn(const PDFDocument& source, int index) {
    const int count = source.pageCount();
    if (count == 0)
        return;
    m_document->commitEditing();
    PageOperations::merge(*m_document, source, index, undoManagerOf(*m_document));
    pagesHaveChanged();
    m_list->scrollTo(m_list->model().index(std::clamp(index, 0, m_list->model().rowCount() - 1)));
    Q_EMIT announced(
        count == 1 ? QStringLiteral("1 page added as page %1").arg(index + 1)
                   : QStringLiteral("%1 pages added: pages %2 to %3").arg(count).arg(index + 1).arg(index + count));
}

// Reading files

void ThumbnailSidebar::readFiles(const QList<QUrl>& urls, std::function<void(const Documents& documents)> read) {
    const QString sentence = urls.size() == 1
                                 ? QStringLiteral("Reading “%1”…").arg(PlainText::name(urls.constFirst().fileName()))
                                 : QStringLiteral("Reading %1 files…").arg(urls.size());
    using Sources = std::vector<std::shared_ptr<PDFSource>>;
    SlowWork::run(
        this, sentence,
        [urls](SlowWork::Course& course) {
            Sources sources;
            for (const QUrl& url : urls) {
                course.tell(static_cast<int>(sources.size()), static_cast<int>(urls.size()));
                if (course.isCancelled())
                    break;
                sources.push_back(PageFiles::read(url));
                if (!sources.back())
                    break; // what comes after it isn't wanted any more
            }
            return sources;
        },
        [this, urls, read = std::move(read)](const Sources& sources) {
            const QPointer<ThumbnailSidebar> self(this);
            Documents documents;
            for (std::size_t i = 0; i < sources.size(); ++i) {
                const auto document = openSource(sources[i], urls[static_cast<qsizetype>(i)]);
                if (!self || !document)
                    return;
                documents.push_back(document);
            }
            read(documents);
        });
}

/// Null when it can't be opened, which is told, or when the user gives up its password.
std::shared_ptr<PDFDocument> ThumbnailSidebar::openSource(const std::shared_ptr<PDFSource>& source, const QUrl& url) {
    const QPointer<ThumbnailSidebar> self(this);
    try {
        if (source) {
            auto document = PDFDocument::fromSource(source);
            const auto askPassword = [self] { return self ? PasswordPrompt::ask(self->window()) : std::nullopt; };
            return PDFUnlocker::promptAndUnlock(*document, askPassword) ? document : nullptr;
        }
    } catch (...) {
        static_cast<void>(sentenceOfCurrentError("opening a file to merge")); // it goes to the log
    }
    if (self)
        showAlert(
            {QStringLiteral("Couldn't Open PDF"), url.fileName() + QStringLiteral(" couldn't be read as a PDF.")});
    return nullptr;
}

void ThumbnailSidebar::mergeDocument() {
    const QPointer<ThumbnailSidebar> self(this);
    const std::optional<QUrl> url = PageFiles::runOpenPanel(this);
    if (!self || !url)
        return;
    readFiles({*url}, [this](const Documents& documents) {
        const PageIndices selected = selection();
        bringIn(*documents.front(), selected.empty() ? m_document->pdfDocument()->pageCount() : *selected.begin() + 1);
    });
}

void ThumbnailSidebar::mergeMultipleFiles() {
    const QPointer<ThumbnailSidebar> self(this);
    const QList<QUrl> urls = PageFiles::runMultiOpenPanel(this);
    if (self && !urls.isEmpty())
        readFiles(urls, [this](const Documents& documents) { saveMerged(documents); });
}

void ThumbnailSidebar::saveMerged(const Documents& documents) {
    const auto merged = PageOperations::mergeFiles(documents);
    const QPointer<ThumbnailSidebar> self(this);
    const std::optional<QString> path = SavePanel::chooseForCopy(this, QStringLiteral("Merged.pdf"));
    if (!self || !path)
        return;
    const QString message =
        QStringLiteral("Saved %1 with %2 pages from %3 files.")
            .arg(QFileInfo(*path).fileName(), QString::number(merged->pageCount()), QString::number(documents.size()));
    writeFiles({{merged, *path}}, QStringLiteral("Merging %1 files…").arg(documents.size()),
               {QStringLiteral("Merge Complete"), message},
               QStringLiteral("The merged PDF couldn't be written to that location."));
}

// Writing files

/// Nothing is told of a success without a title.
void ThumbnailSidebar::writeFiles(const std::vector<NewFile>& files, const QString& sentence, const PageAlert& success,
                                  const QString& failure) {
    const PageAlert failed{QStringLiteral("Couldn't Save"), failure};
    auto copies = std::make_shared<FrozenCopies>();
    try {
        for (const NewFile& file : files)
            copies->add(*file.document, file.path);
    } catch (...) {
        static_cast<void>(sentenceOfCurrentError("preparing new files")); // it goes to the log
        showAlert(failed);
        return;
    }
    SlowWork::run(
        this, sentence,
        [copies](SlowWork::Course& course) {
            try {
                copies->write([&course] { return course.becomeFinal(); });
                return true;
            } catch (...) {
                static_cast<void>(sentenceOfCurrentError("writing new files"));
                return false;
            }
        },
        [this, success, failed, path = files.front().path](bool isWritten) {
            if (isWritten)
                SavePanel::noteCopy(path);
            if (!isWritten)
                showAlert(failed);
            else if (!success.title.isEmpty())
                showAlert(success, QStringLiteral("info.circle"));
        });
}

void ThumbnailSidebar::extractPages(const PageIndices& indices) {
    if (indices.empty())
        return;
    m_document->commitEditing();
    const auto extracted = PageOperations::extractPages(indices, *m_document->pdfDocument());
    const QPointer<ThumbnailSidebar> self(this);
    const std::optional<QString> path = SavePanel::chooseForCopy(this, QStringLiteral("Extracted Pages.pdf"));
    if (self && path)
        writeFiles({{extracted, *path}}, QStringLiteral("Extracting pages…"), {},
                   QStringLiteral("The extracted pages couldn't be written to that location."));
}

void ThumbnailSidebar::splitDocument() {
    const std::shared_ptr<PDFDocument> pdf = m_document->pdfDocument();
    const int count = pdf->pageCount();
    if (count < 2) {
        showAlert({QStringLiteral("Nothing to Split"), QStringLiteral("This document only has one page.")});
        return;
    }
    const PageIndices selected = selection();
    const int splitPoint = selected.empty() ? m_coordinator.currentPageIndex().value_or(count / 2) : *selected.begin();
    if (splitPoint < 1 || splitPoint >= count) {
        showAlert({QStringLiteral("Can't Split There"),
                   QStringLiteral("Select a page (other than the first) to split before.")});
        return;
    }
    m_document->commitEditing();
    PageIndices front;
    PageIndices back;
    for (int i = 0; i < count; ++i)
        (i < splitPoint ? front : back).insert(i);
    const auto first = PageOperations::extractPages(front, *pdf);
    const auto second = PageOperations::extractPages(back, *pdf);
    const QString base = baseName();
    const QPointer<ThumbnailSidebar> self(this);
    const std::optional<QString> folder = PageFiles::runFolderPanel(this);
    if (!self || !folder)
        return;
    const QString firstName = base + QStringLiteral(" (1).pdf");
    const QString secondName = base + QStringLiteral(" (2).pdf");
    const QDir target(*folder);
    writeFiles({{first, target.filePath(firstName)}, {second, target.filePath(secondName)}},
               QStringLiteral("Splitting the document…"),
               {QStringLiteral("Split Complete"), QStringLiteral("Saved ") + firstName + QStringLiteral(" and ") +
                                                      secondName + QStringLiteral(". The open document is unchanged.")},
               QStringLiteral("The split documents couldn't be written to that folder."));
}
