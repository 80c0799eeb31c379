#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QVBoxLayout;

/// What the sheets have in common that make a copy of the document and leave the document alone: a title, a note, room
/// for what is to be chosen, a line for what went wrong, and two buttons. Main thread only.
class CopySheet : public QDialog {
    Q_OBJECT

public:
    ~CopySheet() override;

    /// Empty when nothing went wrong.
    [[nodiscard]] QString errorMessage() const;

Q_SIGNALS:
    /// The copy is on the disk; the sheet closes.
    void saved(const QString& path);

protected:
    /// `action` is what the button says that makes the copy.
    CopySheet(const QString& title, const QString& note, const QString& action, QWidget* parent);

    /// Between the note and the error.
    [[nodiscard]] QVBoxLayout& content() const { return *m_content; }
    [[nodiscard]] QPushButton& actionButton() const { return *m_action; }
    void setErrorMessage(const QString& message);
    /// Tells that the copy is there, and closes.
    void finish(const QString& path);
    /// Makes the copy.
    virtual void act() = 0;

private:
    QVBoxLayout* m_content;
    QLabel* m_error;
    QPushButton* m_action;
};
