#include "ErrorBubble.h"

#include "Palette.h"
#include "SelectableText.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"
#include "ToolbarButton.h"
#include "ToolbarLayout.h"

#include <QAction>
#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>

static constexpr int signSide = 20;
static constexpr int symbolSide = 16;
static constexpr int buttonHeight = 28;
// Reds that can be read as text on a white and on a nearly black ground.
static constexpr QColor redOnLight{0xD7, 0x00, 0x15};
static constexpr QColor redOnDark{0xFF, 0x69, 0x61};

ErrorBubble::ErrorBubble(const QString& text, QWidget* parent)
    : QWidget(parent), m_sentence(text),
      m_sign(new SymbolPicture(QStringLiteral("exclamationmark.triangle.fill"), signSide)),
      m_text(new SelectableText(text)) {
    setObjectName(QStringLiteral("errorBubble"));
    m_text->setObjectName(QStringLiteral("errorText"));
    m_text->setAccessibleName(QStringLiteral("Error"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 2, 0, 2);
    layout->setSpacing(8);
    layout->addWidget(m_sign, 0, Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(m_text);
    column->addWidget(makeActionRow());
    layout->addLayout(column, 1);
    updateColors();
}

ErrorBubble::~ErrorBubble() = default;

QWidget* ErrorBubble::makeActionRow() {
    auto* row = new QWidget;
    row->setObjectName(QStringLiteral("errorActions"));
    auto* layout = new ToolbarLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto addButton = [this, layout](const QString& name, const QString& symbolName, const QString& label,
                                          const QString& help, auto operation) {
        auto* action = new QAction(SymbolIcon::icon(symbolName), label, this);
        action->setObjectName(name);
        action->setToolTip(help);
        connect(action, &QAction::triggered, this, operation);
        auto* button = new ToolbarButton(action);
        button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        button->setIconSize({symbolSide, symbolSide});
        button->setFixedHeight(buttonHeight);
        button->setAccessibleName(label);
        button->setAccessibleDescription(help);
        layout->addGroup(button);
    };
    addButton(QStringLiteral("copyError"), QStringLiteral("doc.on.doc"), QStringLiteral("Copy"),
              QStringLiteral("Copy this message to the clipboard"), &ErrorBubble::copy);
    addButton(QStringLiteral("editQuestion"), QStringLiteral("square.and.pencil"), QStringLiteral("Edit question"),
              QStringLiteral("Put the question back where you write"), &ErrorBubble::questionEditRequested);
    return row;
}

void ErrorBubble::copy() const {
    QGuiApplication::clipboard()->setText(m_sentence);
}

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
