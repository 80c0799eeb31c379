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
    setObjectName(u"replyActions"_qs);
    const struct {
        QString name;
        QString symbolName;
        QString help;
        void (ReplyActionRow::*operation)(); ///< null for what is not collected yet
        QString label;
    } entries[] = {
        {u"helpful"_qs, u"hand.thumbsup"_qs, u"Helpful"_qs, nullptr, {}},
        {u"notHelpful"_qs, u"hand.thumbsdown"_qs, u"Not helpful"_qs, nullptr, {}},
        {u"shareResponse"_qs, u"square.and.arrow.up"_qs, u"Share response"_qs, &ReplyActionRow::share, {}},
        {u"copyResponse"_qs, u"doc.on.doc"_qs, u"Copy to clipboard"_qs, &ReplyActionRow::copy, {}},
        {u"readAloud"_qs, u"speaker.wave.2"_qs, u"Read aloud"_qs, &ReplyActionRow::readAloud, {}},
        {u"regenerate"_qs, u"arrow.clockwise"_qs, u"Regenerate response"_qs, &ReplyActionRow::regenerateRequested, {}},
        {u"editInAPage"_qs, u"square.and.pencil"_qs, u"Copy and edit response in a new document"_qs,
         &ReplyActionRow::copy, u"Edit in a page"_qs},
    };
    auto* layout = new ToolbarLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* symbols = new ToolbarGroup(u"Reply"_qs);
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
        Q_EMIT noticeRequested(u"Reading aloud needs the desktop’s speech service, which isn’t available."_qs);
}
