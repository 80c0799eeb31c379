#pragma once

#include <QToolBar>

#include <memory>
#include <vector>

class ColorSwatch;
class PageField;
class PDFViewCoordinator;
class QAction;
class ToolState;
class WorkspaceActions;

/// The toolbar of a workspace, in groups from left to right: opening, markup, colour, zoom, pages.
class WorkspaceToolbar : public QToolBar {
    Q_OBJECT

public:
    /// `markupActions` are the buttons of the markup group. `actions` and `coordinator` must outlive the toolbar.
    WorkspaceToolbar(const WorkspaceActions& actions, const QList<QAction*>& markupActions,
                     std::shared_ptr<ToolState> toolState, PDFViewCoordinator& coordinator, QWidget* parent = nullptr);
    ~WorkspaceToolbar() override;

Q_SIGNALS:
    void openRequested();

private:
    void addOpenGroup();
    void addColorGroup();
    void addPageGroup(const WorkspaceActions& actions, PDFViewCoordinator& coordinator);
    void addStretch();
    void addButton(QAction* action);
    void chooseCustomColor();
    void updateColors();

    std::shared_ptr<ToolState> m_toolState;
    std::vector<ColorSwatch*> m_swatches;
    QAction* m_customColor = nullptr;
};
