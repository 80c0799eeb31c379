#include "AssistantInputArea.h"

#include "AssistantViewModel.h"
#include "AttachmentChip.h"
#include "MessageField.h"
#include "SendButton.h"
#include "SymbolIcon.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

static constexpr int margin = 12;
static constexpr int symbolSide = 18;
static constexpr qreal cornerRadius = 14;

AssistantInputArea::AssistantInputArea(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent)
    : QWidget(parent), m_viewModel(std::move(viewModel)), m_quickPrompts(makeQuickPrompts()), m_box(new QWidget),
      m_chip(new AttachmentChip), m_field(new MessageField) {
    setObjectName(QStringLiteral("assistantInput"));
    m_field->setObjectName(QStringLiteral("message"));
    m_field->setAccessibleName(QStringLiteral("Message"));
    m_field->setPlaceholderText(QStringLiteral("Message Assistant..."));
    m_field->viewport()->setAutoFillBackground(false);
    m_field->onReturn = [this] {
        if (!canSubmit())
            return false;
        m_viewModel->submit();
        return true;
    };
    m_field->installEventFilter(this);
    setFocusProxy(m_field);

    auto* boxLayout = new QVBoxLayout(m_box);
    boxLayout->setContentsMargins(9, 8, 8, 8);
    boxLayout->setSpacing(6);
    boxLayout->addWidget(m_chip);
    boxLayout->addWidget(m_field);
    boxLayout->addWidget(makeButtonRow());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, 6, margin, margin);
    layout->setSpacing(8);
    layout->addWidget(m_quickPrompts);
    layout->addWidget(m_box);

    AssistantViewModel* model = m_viewModel.get();
    connect(m_field, &QTextEdit::textChanged, this, [this] { m_viewModel->setDraft(m_field->message()); });
    connect(m_chip, &AttachmentChip::removeRequested, model, &AssistantViewModel::removeAttachment);
    connect(m_send, &QAbstractButton::clicked, model, &AssistantViewModel::submit);
    connect(model, &AssistantViewModel::draftChanged, this, [this] {
        m_field->setMessage(m_viewModel->draft());
        updateSend();
    });
    connect(model, &AssistantViewModel::turnsChanged, this, &AssistantInputArea::updateQuickPrompts);
    connect(model, &AssistantViewModel::isRunningChanged, this, &AssistantInputArea::updateSend);
    connect(model, &AssistantViewModel::attachmentNameChanged, this, &AssistantInputArea::updateAttachment);
    connect(model, &AssistantViewModel::attachmentContentChanged, this, &AssistantInputArea::updateSend);
    connect(model, &AssistantViewModel::nameOfFileBeingReadChanged, this, &AssistantInputArea::updateAttachment);
    connect(model, &AssistantViewModel::nameOfFileBeingReadChanged, this, &AssistantInputArea::updateSend);
    connect(model, &AssistantViewModel::modelPreferenceChanged, this, &AssistantInputArea::updateModel);
    m_field->setMessage(m_viewModel->draft());
    updateQuickPrompts();
    updateAttachment();
    updateModel();
    updateSend();
}

AssistantInputArea::~AssistantInputArea() = default;

QWidget* AssistantInputArea::makeQuickPrompts() {
    const struct {
        QString name;
        QString label;
        QString prompt;
    } entries[] = {
        {QStringLiteral("summarizePage"), QStringLiteral("Create a summary of this page"),
         QStringLiteral("Summarize this page")},
        {QStringLiteral("expandOnTopic"), QStringLiteral("Expand on this topic"),
         QStringLiteral("Expand on this topic")},
    };
    auto* prompts = new QWidget;
    auto* layout = new QVBoxLayout(prompts);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    for (const auto& entry : entries) {
        auto* button = new QPushButton(entry.label);
        button->setObjectName(entry.name);
        button->setAccessibleName(entry.label);
        button->setAutoDefault(true);
        layout->addWidget(button);
        connect(button, &QPushButton::clicked, this, [this, prompt = entry.prompt] {
            m_viewModel->setDraft(prompt);
            m_viewModel->submit();
        });
    }
    return prompts;
}

QWidget* AssistantInputArea::makeButtonRow() {
    auto* attach = new QAction(SymbolIcon::icon(QStringLiteral("paperclip")), QString(), this);
    attach->setObjectName(QStringLiteral("attachFile"));
    attach->setToolTip(QStringLiteral("Add PDF or Text Attachment"));
    connect(attach, &QAction::triggered, m_viewModel.get(), &AssistantViewModel::attachFile);
    auto* attachButton = new ToolbarButton(attach);
    attachButton->setIconSize({symbolSide, symbolSide});
    attachButton->setAccessibleName(attach->toolTip());
    m_model = makeModelMenu();
    m_send = new SendButton;

    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(attachButton);
    layout->addWidget(m_model);
    layout->addStretch(1);
    layout->addWidget(m_send);
    return row;
}

QToolButton* AssistantInputArea::makeModelMenu() {
    auto* button = new ToolbarButton;
    button->setObjectName(QStringLiteral("modelMenuButton"));
    button->setToolTip(QStringLiteral("Model"));
    button->setPopupMode(QToolButton::InstantPopup);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setIcon(SymbolIcon::icon(QStringLiteral("chevron.down")));
    button->setIconSize({12, 12});
    auto* menu = new QMenu(button);
    menu->setObjectName(QStringLiteral("modelMenu"));
    menu->setAccessibleName(QStringLiteral("Model"));
    auto* group = new QActionGroup(menu);
    for (const AIModelPreferenceInfo& row : allAIModelPreferences()) {
        QAction* action = menu->addAction(row.rawValue);
        action->setObjectName(row.rawValue);
        action->setCheckable(true);
        group->addAction(action);
        connect(action, &QAction::triggered, m_viewModel.get(),
                [model = m_viewModel.get(), preference = row.preference] { model->setModelPreference(preference); });
    }
    button->setMenu(menu);
    return button;
}

bool AssistantInputArea::canSubmit() const {
    const QString& draft = m_viewModel->draft();
    const bool hasText = std::any_of(draft.begin(), draft.end(), [](QChar character) {
        return character != u'\t' && character.category() != QChar::Separator_Space;
    });
    return (hasText || m_viewModel->attachmentContent()) && !m_viewModel->isRunning() &&
           !m_viewModel->nameOfFileBeingRead();
}

void AssistantInputArea::updateSend() {
    m_send->setEnabled(canSubmit());
}

void AssistantInputArea::updateQuickPrompts() {
    const bool hadFocus = m_quickPrompts->isAncestorOf(focusWidget());
    m_quickPrompts->setVisible(m_viewModel->turns().empty());
    if (hadFocus && m_quickPrompts->isHidden())
        m_field->setFocus();
}

void AssistantInputArea::updateAttachment() {
    const std::optional<QString>& beingRead = m_viewModel->nameOfFileBeingRead();
    const std::optional<QString>& name = beingRead ? beingRead : m_viewModel->attachmentName();
    const bool hadFocus = m_chip->isAncestorOf(focusWidget());
    m_chip->setName(name.value_or(QString()), beingRead.has_value());
    m_chip->setVisible(name.has_value());
    if (hadFocus && !name)
        m_field->setFocus();
}

void AssistantInputArea::updateModel() {
    const QString title = info(m_viewModel->modelPreference()).rawValue;
    m_model->setText(title);
    m_model->setAccessibleName(QStringLiteral("Model: ") + title);
    m_model->findChild<QAction*>(title)->setChecked(true);
}

/// The frame around the field shows its focus.
bool AssistantInputArea::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(watched, event);
}

void AssistantInputArea::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor frame = palette().color(QPalette::WindowText);
    frame.setAlphaF(0.25F);
    if (m_field->hasFocus())
        frame = palette().color(QPalette::Highlight);
    painter.setPen(QPen(frame, m_field->hasFocus() ? 1.5 : 1));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(m_box->geometry()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
}
