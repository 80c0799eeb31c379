#include "ToolActions.h"

#include "Shortcuts.h"
#include "SymbolIcon.h"
#include "ToolState.h"

#include <QAction>
#include <QActionGroup>

ToolActions::ToolActions(std::shared_ptr<ToolState> toolState, QObject* parent)
    : QObject(parent), m_toolState(std::move(toolState)) {
    makeToolActions();
    makeMarkupActions();
    m_editText =
        makeAction(QStringLiteral("editText"), QStringLiteral("Edit Text"), QStringLiteral("character.cursor.ibeam"));
    m_editText->setToolTip(QStringLiteral("Editing Mode: click any line of text in the PDF to edit it in place"));
    connect(m_editText, &QAction::triggered, this, [this] {
        Q_EMIT editTextChosen();
        update();
    });
    if (!m_toolState)
        return;
    connect(m_toolState.get(), &ToolState::toolChanged, this, &ToolActions::update);
    connect(m_toolState.get(), &ToolState::activeMarkupModeChanged, this, &ToolActions::update);
    connect(m_toolState.get(), &ToolState::textEditingModeEnabledChanged, this, &ToolActions::update);
    update();
}

ToolActions::~ToolActions() = default;

QAction* ToolActions::makeAction(const QString& name, const QString& text, const QString& symbolName) {
    auto* action = new QAction(SymbolIcon::icon(symbolName), text, this);
    action->setObjectName(name);
    action->setShortcuts(Shortcuts::of(name));
    action->setCheckable(true);
    action->setIconVisibleInMenu(false);
    action->setEnabled(m_toolState != nullptr);
    return action;
}

void ToolActions::makeToolActions() {
    auto* group = new QActionGroup(this);
    for (const AnnotationToolInfo& info : allAnnotationTools()) {
        QAction* action = makeAction(info.rawValue, info.label, info.symbolName);
        action->setToolTip(helpText(info.tool, Shortcuts::text(info.rawValue)));
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, tool = info.tool] { Q_EMIT toolChosen(tool); });
        m_tools.append(action);
    }
}

void ToolActions::makeMarkupActions() {
    for (const MarkupActionInfo& info : allMarkupActions()) {
        QAction* action = makeAction(info.rawValue, info.title, info.symbolName);
        action->setToolTip(helpText(info.action, Shortcuts::text(info.rawValue)));
        connect(action, &QAction::triggered, this, [this, markup = info.action] {
            Q_EMIT markupChosen(markup);
            // Triggering has changed its mark, whatever became of the mode.
            update();
        });
        m_markup.append(action);
    }
}

void ToolActions::update() {
    m_tools[static_cast<int>(m_toolState->tool())]->setChecked(true);
    for (const MarkupActionInfo& info : allMarkupActions())
        m_markup[static_cast<int>(info.action)]->setChecked(m_toolState->activeMarkupMode() == info.action);
    m_editText->setChecked(m_toolState->isTextEditingModeEnabled());
}
