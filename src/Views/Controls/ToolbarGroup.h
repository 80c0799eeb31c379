#pragma once

#include <QList>
#include <QWidget>

class QAction;
class QHBoxLayout;
class ToolbarButton;

/// Controls of the toolbar that belong together, side by side.
class ToolbarGroup : public QWidget {
    Q_OBJECT

public:
    /// `name` is for those who can't see what belongs together.
    explicit ToolbarGroup(const QString& name, int spacing = 1, QWidget* parent = nullptr);
    ~ToolbarGroup() override;

    ToolbarButton* addButton(QAction* action);
    void addButtons(const QList<QAction*>& actions);
    void addWidget(QWidget* widget);
    /// What comes before keeps to the left.
    void addStretch();

private:
    QHBoxLayout* m_layout;
};
