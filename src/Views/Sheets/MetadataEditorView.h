#pragma once

#include <QDialog>

#include <memory>

class PDFEditorDocument;
class QLineEdit;

/// The sheet for title, author, subject and keywords of a document. Saving changes all four in one step that can be
/// undone. Main thread only.
class MetadataEditorView : public QDialog {
    Q_OBJECT

public:
    explicit MetadataEditorView(std::shared_ptr<PDFEditorDocument> document, QWidget* parent = nullptr);
    ~MetadataEditorView() override;

    /// Gives the document what the fields say, and ends the sheet.
    void save();

private:
    std::shared_ptr<PDFEditorDocument> m_document;
    QLineEdit* m_title;
    QLineEdit* m_author;
    QLineEdit* m_subject;
    QLineEdit* m_keywords;
};
