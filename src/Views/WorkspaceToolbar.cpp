#include "WorkspaceToolbar.h"

#include "AnnotatingPDFView.h"
#include "ColorSwatch.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "PageField.h"
#include "Palette.h"
#include "SymbolIcon.h"
#include "ToolState.h"
#include "WorkspaceActions.h"

#include <QAction>
#include <QColorDialog>
#include <QPainter>
#include <QToolButton>

static constexpr int symbolSide = 20;

/// The names of `Palette::annotationPresets`, for those who can't see them.
static const QString& presetName(std::size_t index) {
    static const std::array<QString, Palette::annotationPresets.size()> names = {
        u"Amber"_qs, u"Red"_qs, u"Blue"_qs, u"Green"_qs, u"Purple"_qs, u"Black"_qs};
    return names[index];
}

/// A disc in the colour inside of a ring in all colours: another colour can be chosen here.
static QIcon colorWellIcon(const QColor& color, qreal devicePixelRatio) {
    QPixmap pixmap(QSize(symbolSide, symbolSide) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF center(symbolSide / 2.0, symbolSide / 2.0);
    QConicalGradient allColors(center, 0);
    for (int step = 0; step <= 6; ++step)
        allColors.setColorAt(step / 6.0, QColor::fromHsv(step * 60 % 360, 190, 235));
    painter.setPen(QPen(QBrush(allColors), 2.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(center, 8.5, 8.5);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(center, 5.5, 5.5);
    return pixmap;
}

WorkspaceToolbar::WorkspaceToolbar(const WorkspaceActions& actions, const QList<QAction*>& markupActions,
                                   std::shared_ptr<ToolState> toolState, PDFViewCoordinator& coordinator,
                                   QWidget* parent)
    : QToolBar(parent), m_toolState(std::move(toolState)) {
    setObjectName(u"workspaceToolbar"_qs);
    setAccessibleName(u"Tools"_qs);
    setIconSize({symbolSide, symbolSide});
    setMovable(false);

    addOpenGroup();
    addSeparator();
    for (QAction* action : markupActions)
        addButton(action);
    addSeparator();
    addColorGroup();
    addStretch();
    using Command = WorkspaceActions::Command;
    for (const Command command : {Command::zoomOut, Command::zoomToFit, Command::zoomIn})
        addButton(actions.action(command));
    addSeparator();
    addPageGroup(actions, coordinator);
}

WorkspaceToolbar::~WorkspaceToolbar() = default;

void WorkspaceToolbar::addButton(QAction* action) {
    addAction(action);
    QWidget* button = widgetForAction(action);
    button->setObjectName(action->objectName() + u"Button"_qs);
    button->setAccessibleName(action->iconText());
    button->setFocusPolicy(Qt::TabFocus);
}

void WorkspaceToolbar::addStretch() {
    auto* stretch = new QWidget;
    stretch->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(stretch);
}

void WorkspaceToolbar::addOpenGroup() {
    auto* open = new QAction(SymbolIcon::icon(u"doc.badge.plus"_qs), u"Open"_qs, this);
    open->setObjectName(u"openDocument"_qs);
    open->setToolTip(u"Open a PDF or Word document…"_qs);
    connect(open, &QAction::triggered, this, &WorkspaceToolbar::openRequested);
    addButton(open);
    qobject_cast<QToolButton*>(widgetForAction(open))->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

void WorkspaceToolbar::addColorGroup() {
    for (std::size_t i = 0; i < Palette::annotationPresets.size(); ++i) {
        auto* swatch = new ColorSwatch(Palette::annotationPresets[i], presetName(i));
        swatch->setToolTip(u"Marker color presets"_qs);
        connect(swatch, &ColorSwatch::clicked, this, [this, swatch] {
            m_toolState->setColor(swatch->color());
            updateColors();
        });
        m_swatches.push_back(swatch);
        addWidget(swatch);
    }
    m_customColor = new QAction(u"Custom Color"_qs, this);
    m_customColor->setObjectName(u"customColor"_qs);
    m_customColor->setToolTip(u"Custom marker color"_qs);
    connect(m_customColor, &QAction::triggered, this, &WorkspaceToolbar::chooseCustomColor);
    addButton(m_customColor);
    connect(m_toolState.get(), &ToolState::colorChanged, this, &WorkspaceToolbar::updateColors);
    updateColors();
}

void WorkspaceToolbar::updateColors() {
    for (ColorSwatch* swatch : m_swatches)
        swatch->setChecked(swatch->color() == m_toolState->color());
    m_customColor->setIcon(colorWellIcon(m_toolState->color(), devicePixelRatioF()));
}

void WorkspaceToolbar::chooseCustomColor() {
    auto* dialog = new QColorDialog(m_toolState->color(), window());
    dialog->setObjectName(u"customColorDialog"_qs);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, m_toolState.get(), &ToolState::setColor);
    dialog->open();
}

void WorkspaceToolbar::addPageGroup(const WorkspaceActions& actions, PDFViewCoordinator& coordinator) {
    auto* field = new PageField;
    addButton(actions.action(WorkspaceActions::Command::previousPage));
    addWidget(field);
    addButton(actions.action(WorkspaceActions::Command::nextPage));

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
}
