#include "SymbolLabel.h"

#include "SymbolPicture.h"

#include <QHBoxLayout>
#include <QLabel>

static constexpr int symbolSide = 18;

SymbolLabel::SymbolLabel(QWidget* parent)
    : QWidget(parent), m_symbol(new SymbolPicture({}, symbolSide)), m_text(new QLabel) {
    m_text->setTextFormat(Qt::PlainText);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text, 1);
}

SymbolLabel::~SymbolLabel() = default;

void SymbolLabel::setContent(const QString& symbolName, const QString& text, const QColor& symbolColor) {
    m_symbol->setSymbolName(symbolName);
    m_symbol->setColor(symbolColor);
    m_text->setText(text);
    setAccessibleName(text);
}

QString SymbolLabel::text() const {
    return m_text->text();
}

const QString& SymbolLabel::symbolName() const {
    return m_symbol->symbolName();
}
