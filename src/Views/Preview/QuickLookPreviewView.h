#pragma once

#include "FilePreviewer.h"

#include <QStackedWidget>
#include <QUrl>

#include <memory>

class PDFDocument;
class PDFView;

/// The pages of a file that isn't a PDF, to be read, searched for words by the eye and copied from, and not to be
/// changed. Until they are there it says what is going on, and when they don't come, why.
class QuickLookPreviewView : public QStackedWidget {
    Q_OBJECT

public:
    explicit QuickLookPreviewView(QUrl url, QWidget* parent = nullptr);
    ~QuickLookPreviewView() override;

    void showPages(const std::shared_ptr<PDFDocument>& pages);
    void showFailure(FilePreviewer::Outcome outcome);

    /// Null until there are pages.
    [[nodiscard]] PDFView* pdfView() const { return m_pages; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeProgress();
    void fitWidth();
    void addZoom();

    const QUrl m_url;
    PDFView* m_pages = nullptr;
    bool m_isFitting = false;
    bool m_followsWidth = true; ///< until the reader sets a scale
};
