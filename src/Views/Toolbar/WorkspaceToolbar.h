#pragma once

#include "AnnotationTool.h"

#include <QWidget>

#include <memory>

class PDFViewCoordinator;
class ToolState;
class ToolbarGroup;
class ToolbarLayout;
class WorkspaceActions;

/// The toolbar of a workspace, in groups from left to right: opening, tools, markup, options of the tool, zoom, pages,
/// editing of page text, the assistant and the settings. Where the window is too narrow for one row it has several, so
/// all of it stays in reach.
class WorkspaceToolbar : public QWidget {
    Q_OBJECT

public:
    /// `actions` and `coordinator` must outlive the toolbar.
    WorkspaceToolbar(const WorkspaceActions& actions, std::shared_ptr<ToolState> toolState,
                     PDFViewCoordinator& coordinator, QWidget* parent = nullptr);
    ~WorkspaceToolbar() override;

    [[nodiscard]] QWidget* toolButton(AnnotationTool tool) const;

Q_SIGNALS:
    void openRequested();
    void settingsRequested();
    /// The button for the end of lines was pressed.
    void lineEndStylesRequested(QWidget* button);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ToolbarGroup* makeOpenGroup(const WorkspaceActions& actions);
    ToolbarGroup* makeRightGroup(const WorkspaceActions& actions);
    ToolbarGroup* makePageGroup(const WorkspaceActions& actions, PDFViewCoordinator& coordinator);

    ToolbarLayout* m_layout;
    ToolbarGroup* m_toolGroup;
};
