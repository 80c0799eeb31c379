#pragma once

#include "FilePreviewer.h"

#include <QFuture>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <stop_token>

class PDFDocument;
class PDFSource;

/// Makes the pages of a file and finds its words, once, on another thread. Main thread only; the work ends when this
/// does.
class FilePreview : public QObject {
    Q_OBJECT

public:
    /// `path` is empty for what is no local file.
    explicit FilePreview(QString path, QObject* parent = nullptr);
    ~FilePreview() override;

    /// Without pages only the desktop's index is asked for words. To be called once.
    void start(bool withPages);

    [[nodiscard]] const QString& path() const { return m_path; }

Q_SIGNALS:
    void pagesReady(const std::shared_ptr<PDFDocument>& pages);
    /// There are no pages: `failed` or `programMissing`.
    void pagesFailed(FilePreviewer::Outcome outcome);
    /// The words, or none; comes once, before or after the pages.
    void textReady(const std::optional<QString>& text);

private:
    struct Step {
        std::shared_ptr<PDFSource> pages;
        std::optional<FilePreviewer::Outcome> failure;
        bool isText = false;
        std::optional<QString> text;
    };
    static void work(QPromise<Step>& promise, const QString& path, bool withPages, const std::stop_token& stop);
    void report(const Step& step);

    const QString m_path;
    std::stop_source m_stop;
};
