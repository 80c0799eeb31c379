#include "PageFiles.h"

#include "DialogRun.h"
#include "ErrorSentence.h"
#include "FileOpenRouter.h"
#include "PDFDocument.h"
#include "SavePanel.h"

#include <QFileDialog>
#include <QMimeData>
#include <QWidget>

static QFileDialog* makePanel(QWidget* parent, const QString& name, const QString& title,
                              QFileDialog::FileMode fileMode) {
    auto* panel = new QFileDialog(parent->window(), title, SavePanel::startFolder(parent));
    panel->setObjectName(name);
    panel->setFileMode(fileMode);
    if (fileMode == QFileDialog::Directory)
        panel->setOption(QFileDialog::ShowDirsOnly);
    else
        panel->setNameFilter(QStringLiteral("PDF files (*.pdf *.PDF)"));
    return panel;
}

static QList<QUrl> chosen(QFileDialog* panel) {
    const DialogRun run(panel);
    return run.isAccepted() ? panel->selectedUrls() : QList<QUrl>();
}

std::optional<QUrl> PageFiles::runOpenPanel(QWidget* parent) {
    const QList<QUrl> urls = chosen(makePanel(parent, QStringLiteral("mergePanel"),
                                              QStringLiteral("Merge PDF Into Document"), QFileDialog::ExistingFile));
    return urls.isEmpty() ? std::nullopt : std::optional(urls.constFirst());
}

QList<QUrl> PageFiles::runMultiOpenPanel(QWidget* parent) {
    return chosen(makePanel(parent, QStringLiteral("mergeFilesPanel"), QStringLiteral("Merge Multiple Files"),
                            QFileDialog::ExistingFiles));
}

std::optional<QString> PageFiles::runFolderPanel(QWidget* parent) {
    QFileDialog* panel =
        makePanel(parent, QStringLiteral("folderPanel"), QStringLiteral("Choose a Folder"), QFileDialog::Directory);
    panel->setLabelText(QFileDialog::Accept, QStringLiteral("Choose"));
    const QList<QUrl> urls = chosen(panel);
    return urls.isEmpty() ? std::nullopt : std::optional(urls.constFirst().toLocalFile());
}

QList<QUrl> PageFiles::pdfFiles(const QMimeData& data) {
    QList<QUrl> files;
    for (const QUrl& url : data.urls())
        if (url.isLocalFile() && FileOpenRouter::classify(url) == FileOpenRouter::Kind::pdf)
            files.append(url);
    return files;
}

std::shared_ptr<PDFSource> PageFiles::read(const QUrl& url) {
    try {
        return PDFDocument::openSource(url.toLocalFile());
    } catch (...) {
        static_cast<void>(sentenceOfCurrentError("reading a file to merge")); // it goes to the log
        return nullptr;
    }
}
