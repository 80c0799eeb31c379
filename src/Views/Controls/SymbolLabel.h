#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

class QLabel;
class SymbolPicture;

/// A line of text with a symbol before it, both in the palette's text colour unless the symbol has one of its own.
class SymbolLabel : public QWidget {
    Q_OBJECT

public:
    explicit SymbolLabel(QWidget* parent = nullptr);
    ~SymbolLabel() override;

    /// An invalid `symbolColor` stands for that of the text.
    void setContent(const QString& symbolName, const QString& text, const QColor& symbolColor = {});

    [[nodiscard]] QString text() const;
    [[nodiscard]] const QString& symbolName() const;

private:
    SymbolPicture* m_symbol;
    QLabel* m_text;
};
