#include "ErrorBubble.h"

#include "Palette.h"
#include "SelectableText.h"
#include "SymbolPicture.h"

#include <QEvent>
#include <QHBoxLayout>

static constexpr int signSide = 20;
// Reds that can be read as text on a white and on a nearly black ground.
static constexpr QColor redOnLight{0xD7, 0x00, 0x15};
static constexpr QColor redOnDark{0xFF, 0x69, 0x61};

ErrorBubble::ErrorBubble(const QString& text, QWidget* parent)
    : QWidget(parent), m_sign(new SymbolPicture(QStringLiteral("exclamationmark.triangle.fill"), signSide)),
      m_text(new SelectableText(text)) {
    setObjectName(QStringLiteral("errorBubble"));
    m_text->setObjectName(QStringLiteral("errorText"));
    m_text->setAccessibleName(QStringLiteral("Error"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    layout->addWidget(m_sign, 0, Qt::AlignTop);
    layout->addWidget(m_text, 1);
    updateColors();
}

ErrorBubble::~ErrorBubble() = default;

void ErrorBubble::updateColors() {
    const QColor red = Palette::isDark(palette()) ? redOnDark : redOnLight;
    m_sign->setColor(red);
    m_text->setTextColor(red);
}

void ErrorBubble::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        updateColors();
    QWidget::changeEvent(event);
}
