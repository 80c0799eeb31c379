#include "SymbolPicture.h"

#include "SymbolIcon.h"

#include <QPainter>
#include <QPalette>

SymbolPicture::SymbolPicture(const QString& symbolName, int side, QWidget* parent)
    : QWidget(parent), m_symbolName(symbolName) {
    setFixedSize(side, side);
}

SymbolPicture::~SymbolPicture() = default;

void SymbolPicture::setSymbolName(const QString& symbolName) {
    m_symbolName = symbolName;
    update();
}

void SymbolPicture::setColor(const QColor& color) {
    m_color = color;
    update();
}

void SymbolPicture::paintEvent(QPaintEvent*) {
    if (m_symbolName.isEmpty())
        return;
    const QColor color = m_color.isValid() ? m_color : palette().color(QPalette::WindowText);
    QPainter(this).drawPixmap(0, 0, SymbolIcon::pixmap(m_symbolName, width(), color, devicePixelRatioF()));
}
