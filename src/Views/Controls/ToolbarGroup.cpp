#include "ToolbarGroup.h"

#include "ToolbarButton.h"

#include <QHBoxLayout>

ToolbarGroup::ToolbarGroup(const QString& name, int spacing, QWidget* parent)
    : QWidget(parent), m_layout(new QHBoxLayout(this)) {
    setAccessibleName(name);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(spacing);
}

ToolbarGroup::~ToolbarGroup() = default;

ToolbarButton* ToolbarGroup::addButton(QAction* action) {
    auto* button = new ToolbarButton(action);
    addWidget(button);
    return button;
}

void ToolbarGroup::addButtons(const QList<QAction*>& actions) {
    for (QAction* action : actions)
        addButton(action);
}

void ToolbarGroup::addWidget(QWidget* widget) {
    m_layout->addWidget(widget);
}

void ToolbarGroup::addStretch() {
    m_layout->addStretch(1);
}
