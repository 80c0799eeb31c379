#include "ReplyActionRow.h"

#include "ShareMenu.h"
#include "SpeechSynthesizer.h"
#include "SymbolIcon.h"
#include "ToolbarButton.h"
#include "ToolbarGroup.h"
#include "ToolbarLayout.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

static constexpr int symbolSide = 16;
static constexpr int buttonSide = 28;

ReplyActionRow::ReplyActionRow(const QString& text, QWidget* parent) : QWidget(parent), m_text(text) {
    setObjectName(QStringLiteral("replyActions"));
    const struct {
        QString name;
        QString symbolName;
        QString help;
        void (ReplyActionRow::*operation)(); ///< null for what is not collected yet
        QString label;
    } entries[] = {
        {QStringLiteral("helpful"), QStringLiteral("hand.thumbsup"), QStringLiteral("Helpful"), nullptr, {}},
        {QStringLiteral("notHelpful"), QStringLiteral("hand.thumbsdown"), QStringLiteral("Not helpful"), nullptr, {}},
        {QStringLiteral("shareResponse"),
         QStringLiteral("square.and.arrow.up"),
         QStringLiteral("Share response"),
         &ReplyActionRow::share,
         {}},
        {QStringLiteral("copyResponse"),
         QStringLiteral("doc.on.doc"),
         QStringLiteral("Copy to clipboard"),
         &ReplyActionRow::copy,
         {}},
        {QStringLiteral("readAloud"),
         QStringLiteral("speaker.wave.2"),
         QStringLiteral("Read aloud"),
         &ReplyActionRow::readAloud,
         {}},
        {QStringLiteral("regenerate"),
         QStringLiteral("arrow.clockwise"),
         QStringLiteral("Regenerate response"),
         &ReplyActionRow::regenerateRequested,
         {}},
        {QStringLiteral("editInAPage"), QStringLiteral("square.and.pencil"),
         QStringLiteral("Copy and edit response in a new document"), &ReplyActionRow::copy,
         QStringLiteral("Edit in a page")},
    };
    auto* layout = new ToolbarLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* symbols = new ToolbarGroup(QStringLiteral("Reply"));
    for (const auto& entry : entries) {
        auto* action = new QAction(SymbolIcon::icon(entry.symbolName), entry.label, this);
        action->setObjectName(entry.name);
        action->setToolTip(entry.help);
        if (entry.operation)
            connect(action, &QAction::triggered, this, entry.operation);
        auto* button = new ToolbarButton(action);
        button->setIconSize({symbolSide, symbolSide});
        button->setAccessibleName(entry.help);
        if (entry.label.isEmpty()) {
            button->setToolButtonStyle(Qt::ToolButtonIconOnly);
            button->setFixedSize(buttonSide, buttonSide);
            symbols->addWidget(button);
        } else {
            button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
            button->setFixedHeight(buttonSide);
            layout->addGroup(symbols);
            layout->addGroup(button);
        }
        if (entry.operation == &ReplyActionRow::share)
            m_shareButton = button;
    }
}

ReplyActionRow::~ReplyActionRow() = default;

void ReplyActionRow::share() {
    ShareMenu::popUp(m_text, *m_shareButton, [this](const QString& sentence) { Q_EMIT noticeRequested(sentence); });
}

void ReplyActionRow::copy() {
    QGuiApplication::clipboard()->setText(m_text);
}

void ReplyActionRow::readAloud() {
    if (!SpeechSynthesizer::speakToTheEnd(m_text))
        Q_EMIT noticeRequested(
            QStringLiteral("Reading aloud needs the desktop’s speech service, which isn’t available."));
}
