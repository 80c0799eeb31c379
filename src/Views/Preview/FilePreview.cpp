#include "FilePreview.h"

#include "Logging.h"
#include "PDFDocument.h"
#include "PDFSource.h"
#include "SpotlightTextExtractor.h"

#include <QFutureWatcher>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtConcurrentRun>

#include <exception>
#include <utility>

/// Of their own, so that a file that takes minutes keeps nothing else waiting. Each asks for a core and much memory.
static QThreadPool& workers() {
    static QThreadPool pool;
    constexpr int atOnce = 2;
    pool.setMaxThreadCount(atOnce);
    return pool;
}

FilePreview::FilePreview(QString path, QObject* parent) : QObject(parent), m_path(std::move(path)) {}

FilePreview::~FilePreview() {
    m_stop.request_stop();
}

void FilePreview::start(bool withPages) {
    auto* watcher = new QFutureWatcher<Step>(this);
    connect(watcher, &QFutureWatcherBase::resultReadyAt, this,
            [this, watcher](int index) { report(watcher->resultAt(index)); });
    connect(watcher, &QFutureWatcherBase::finished, watcher, &QObject::deleteLater);
    watcher->setFuture(QtConcurrent::run(&workers(), &FilePreview::work, m_path, withPages, m_stop.get_token()));
}

void FilePreview::work(QPromise<Step>& promise, const QString& path, bool withPages, const std::stop_token& stop) {
    if (stop.stop_requested())
        return;
    std::optional<QString> text;
    if (!path.isEmpty())
        text = SpotlightTextExtractor::indexedText(path);
    if (text || !withPages)
        promise.addResult(Step{{}, {}, true, text});
    if (!withPages)
        return;
    const QTemporaryDir folder;
    const QString pages = folder.filePath(QStringLiteral("pages.pdf"));
    FilePreviewer::Outcome outcome =
        folder.isValid() ? FilePreviewer::writePages(path, pages, stop) : FilePreviewer::Outcome::failed;
    std::shared_ptr<PDFSource> source;
    try {
        if (outcome == FilePreviewer::Outcome::written)
            source = PDFDocument::openSource(pages);
    } catch (const std::exception& error) {
        qCWarning(Logging::view) << "the pages of a preview can't be read:" << Logging::causes(error);
        outcome = FilePreviewer::Outcome::failed;
    }
    promise.addResult(source ? Step{source, {}, false, {}} : Step{{}, outcome, false, {}});
    if (!text)
        promise.addResult(
            Step{{}, {}, true, source ? SpotlightTextExtractor::textOfPages(*source, stop) : std::nullopt});
}

void FilePreview::report(const Step& step) {
    if (step.pages)
        Q_EMIT pagesReady(PDFDocument::fromSource(step.pages));
    else if (step.failure)
        Q_EMIT pagesFailed(*step.failure);
    else
        Q_EMIT textReady(step.text);
}
