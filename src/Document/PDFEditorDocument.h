#pragma once

#include "Document.h"

class PDFDocument;
struct PDFDraft;

/// The document of a window: a PDF file, or a new document without pages. All views of the window share it, and it
/// holds the one `PDFDocument` that they show and change. Main thread only.
class PDFEditorDocument : public Document {
    Q_OBJECT

public:
    /// Holds a new, empty `PDFDocument`.
    explicit PDFEditorDocument(QObject* parent = nullptr);
    ~PDFEditorDocument() override;

    /// Never null.
    [[nodiscard]] const std::shared_ptr<PDFDocument>& pdfDocument() const { return m_pdfDocument; }
    /// Puts another document in place of the present one; it must not be null.
    void setPdfDocument(const std::shared_ptr<PDFDocument>& pdfDocument);

    /// True when the file was locked when it was opened, also after it has been unlocked.
    [[nodiscard]] bool wasPasswordProtected() const { return m_wasPasswordProtected; }
    void setWasPasswordProtected(bool wasProtected);

    /// A sentence for the user about the state in which the file was found, or an empty string: that it was damaged and
    /// has been repaired.
    [[nodiscard]] QString openNotice() const;

    /// Opens the PDF file. A protected one is held locked.
    [[nodiscard]] Reading reading(const QUrl& url) const override { return readingOf(url); }
    /// The same for a document that isn't there yet. Any thread.
    [[nodiscard]] static Reading readingOf(const QUrl& url);
    /// Looks for the mark at the end of the file.
    [[nodiscard]] WholeCheck wholeCheck() const override { return &looksWhole; }
    /// The whole state, annotations and page changes included. A locked document can't be saved.
    [[nodiscard]] QByteArray dataRepresentation() const override;
    /// Takes a copy of what has changed, not of the file. A locked document can't be saved.
    [[nodiscard]] std::shared_ptr<const DocumentSnapshot> snapshot(SignatureCare care) const override;
    /// What the views hold that somebody is just typing; they go on holding it.
    [[nodiscard]] PDFDraft draft() const;
    /// "pdf".
    [[nodiscard]] QString fileNameExtension() const override;

    /// For whoever has changed which pages there are, or what they show: empties the `ThumbnailCache` and tells
    /// `objectWillChange`.
    void tellPagesChanged();

Q_SIGNALS:
    /// The `PDFDocument`, its pages or its lock state changed: views look at it anew. Whoever changes the pages or the
    /// lock state of `pdfDocument()` emits this once the change is complete.
    void objectWillChange();
    /// Another `PDFDocument` object was put in place. Comes before `objectWillChange`.
    void pdfDocumentChanged();
    void wasPasswordProtectedChanged(bool wasProtected);
    /// Asks the views to add what they hold.
    void draftRequested(PDFDraft& draft) const;
    /// What a view holds is another than before. Whoever answers `draftRequested` emits it.
    void typed();

private:
    static bool looksWhole(const QUrl& url);
    void hold(const std::shared_ptr<PDFDocument>& read, const QUrl& url);

    std::shared_ptr<PDFDocument> m_pdfDocument;
    bool m_wasPasswordProtected = false;
};
