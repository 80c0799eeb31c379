#include "WorkspaceToolbar.h"

#include "AnnotatingPDFView.h"
#include "OptionsGroup.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "PageField.h"
#include "SymbolIcon.h"
#include "ToolActions.h"
#include "ToolState.h"
#include "ToolbarButton.h"
#include "ToolbarGroup.h"
#include "ToolbarLayout.h"
#include "WorkspaceActions.h"

#include <QAction>
#include <QPainter>

using Command = WorkspaceActions::Command;
using Placement = ToolbarLayout::Placement;

WorkspaceToolbar::WorkspaceToolbar(const WorkspaceActions& actions, std::shared_ptr<ToolState> toolState,
                                   PDFViewCoordinator& coordinator, QWidget* parent)
    : QWidget(parent), m_layout(new ToolbarLayout(this)), m_toolGroup(new ToolbarGroup(QStringLiteral("Tools"))) {
    setObjectName(QStringLiteral("workspaceToolbar"));
    setAccessibleName(QStringLiteral("Toolbar"));
    m_layout->setContentsMargins(6, 3, 6, 4);
    const ToolActions& tools = actions.tools();
    m_toolGroup->addButtons(tools.tools());
    auto* markup = new ToolbarGroup(QStringLiteral("Markup"));
    markup->addButtons(tools.markup());
    auto* options = new OptionsGroup(std::move(toolState));
    connect(options, &OptionsGroup::lineEndStylesRequested, this, &WorkspaceToolbar::lineEndStylesRequested);
    auto* zoom = new ToolbarGroup(QStringLiteral("Zoom"));
    for (const Command command : {Command::zoomOut, Command::zoomToFit, Command::zoomIn})
        zoom->addButton(actions.action(command));

    m_layout->addGroup(makeOpenGroup(actions));
    m_layout->addGroup(m_toolGroup);
    m_layout->addGroup(markup);
    m_layout->addGroup(options, Placement::beginsHalf);
    m_layout->addGroup(zoom, Placement::beginsRightSide);
    m_layout->addGroup(makePageGroup(actions, coordinator));
    m_layout->addGroup(makeRightGroup(actions));
}

WorkspaceToolbar::~WorkspaceToolbar() = default;

QWidget* WorkspaceToolbar::toolButton(AnnotationTool tool) const {
    return m_toolGroup->findChild<ToolbarButton*>(info(tool).rawValue + QStringLiteral("Button"));
}

ToolbarGroup* WorkspaceToolbar::makeOpenGroup(const WorkspaceActions& actions) {
    auto* open = new QAction(SymbolIcon::icon(QStringLiteral("doc.badge.plus")), QStringLiteral("Open"), this);
    open->setObjectName(QStringLiteral("openDocument"));
    open->setToolTip(QStringLiteral("Open a PDF or Word document…"));
    connect(open, &QAction::triggered, this, &WorkspaceToolbar::openRequested);
    auto* group = new ToolbarGroup(QStringLiteral("File"));
    group->addButton(open)->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    group->addButton(actions.action(Command::toggleSidebar));
    return group;
}

ToolbarGroup* WorkspaceToolbar::makeRightGroup(const WorkspaceActions& actions) {
    auto* settings = new QAction(SymbolIcon::icon(QStringLiteral("gearshape")), QStringLiteral("Settings"), this);
    settings->setObjectName(QStringLiteral("openSettings"));
    settings->setToolTip(QStringLiteral("Settings…"));
    connect(settings, &QAction::triggered, this, &WorkspaceToolbar::settingsRequested);
    auto* group = new ToolbarGroup(QStringLiteral("Document"));
    QAction* apply = actions.action(Command::applyRedactions);
    ToolbarButton* applyButton = group->addButton(apply);
    applyButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    applyButton->setVisible(apply->isVisible());
    connect(apply, &QAction::changed, applyButton,
            [apply, applyButton] { applyButton->setVisible(apply->isVisible()); });
    group->addButton(actions.tools().editText())->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    group->addButton(actions.action(Command::ocrPage))->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    group->addButton(actions.action(Command::askAssistant))->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    group->addButton(settings);
    return group;
}

ToolbarGroup* WorkspaceToolbar::makePageGroup(const WorkspaceActions& actions, PDFViewCoordinator& coordinator) {
    auto* field = new PageField;
    auto* group = new ToolbarGroup(QStringLiteral("Pages"));
    group->addButton(actions.action(Command::previousPage));
    group->addWidget(field);
    group->addButton(actions.action(Command::nextPage));

    const auto update = [field, &coordinator] {
        const AnnotatingPDFView* view = coordinator.pdfView();
        field->setPageCount(view && view->document() ? view->document()->pageCount() : 0);
        field->setIndicator(coordinator.pageIndicator());
    };
    connect(&coordinator, &PDFViewCoordinator::pageIndicatorChanged, field, update);
    update();
    connect(field, &PageField::pageChosen, &coordinator, [&coordinator](int pageIndex) {
        if (AnnotatingPDFView* view = coordinator.pdfView()) {
            view->goToPage(view->document()->page(pageIndex));
            view->setFocus();
        }
    });
    return group;
}

void WorkspaceToolbar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(0.2F);
    painter.setPen(line);
    for (const QLine& separator : m_layout->separators())
        painter.drawLine(separator);
    painter.drawLine(0, height() - 1, width() - 1, height() - 1);
}
