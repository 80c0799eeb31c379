#pragma once

#include <QWidget>

class SelectableText;
class SymbolPicture;

/// Why a question has no answer: a sign and the sentence, both red.
class ErrorBubble : public QWidget {
    Q_OBJECT

public:
    explicit ErrorBubble(const QString& text, QWidget* parent = nullptr);
    ~ErrorBubble() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void updateColors();

    SymbolPicture* m_sign;
    SelectableText* m_text;
};
