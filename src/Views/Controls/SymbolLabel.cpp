#include "SymbolLabel.h"

#include "SymbolIcon.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

static constexpr int symbolSide = 18;

SymbolLabel::SymbolLabel(QWidget* parent) : QWidget(parent), m_symbol(new QLabel), m_text(new QLabel) {
    m_text->setTextFormat(Qt::PlainText);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(m_symbol);
    layout->addWidget(m_text, 1);
}

SymbolLabel::~SymbolLabel() = default;

void SymbolLabel::setContent(const QString& symbolName, const QString& text, const QColor& symbolColor) {
    m_symbolName = symbolName;
    m_symbolColor = symbolColor;
    m_text->setText(text);
    setAccessibleName(text);
    updateSymbol();
}

QString SymbolLabel::text() const {
    return m_text->text();
}

void SymbolLabel::updateSymbol() {
    const QColor color = m_symbolColor.isValid() ? m_symbolColor : palette().color(QPalette::WindowText);
    m_symbol->setPixmap(SymbolIcon::pixmap(m_symbolName, symbolSide, color, devicePixelRatioF()));
}

void SymbolLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange && !m_symbolName.isEmpty())
        updateSymbol();
    QWidget::changeEvent(event);
}
