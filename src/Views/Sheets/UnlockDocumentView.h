#pragma once

#include <QWidget>

#include <memory>

class PDFEditorDocument;
class QLabel;
class QLineEdit;

/// What a window shows in place of a locked document: asks for its password and unlocks it in place.
class UnlockDocumentView : public QWidget {
    Q_OBJECT

public:
    explicit UnlockDocumentView(std::shared_ptr<PDFEditorDocument> document, QWidget* parent = nullptr);
    ~UnlockDocumentView() override;

    /// True after a password that didn't open the document.
    [[nodiscard]] bool wrongPassword() const { return m_wrongPassword; }

    /// Tries the password that is in the field. On success the document tells that it changed.
    void unlock();

Q_SIGNALS:
    /// The user gave up; the window is to close.
    void closeRequested();

protected:
    /// Escape gives up.
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::shared_ptr<PDFEditorDocument> m_document;
    QLineEdit* m_passwordField;
    QLabel* m_wrongPasswordLine;
    bool m_wrongPassword = false;
};
