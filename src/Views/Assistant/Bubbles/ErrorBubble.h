#pragma once

#include <QWidget>

class SelectableText;
class SymbolPicture;

/// Why a question has no answer: a sign and the sentence, both red, and below what can be done about it.
class ErrorBubble : public QWidget {
    Q_OBJECT

public:
    explicit ErrorBubble(const QString& text, QWidget* parent = nullptr);
    ~ErrorBubble() override;

Q_SIGNALS:
    /// The question that failed is to be asked in another way.
    void questionEditRequested();

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeActionRow();
    void copy() const;
    void updateColors();

    const QString m_sentence;
    SymbolPicture* m_sign;
    SelectableText* m_text;
};
