#include "WorkspaceActions.h"

#include "AnnotatingPDFView.h"
#include "SymbolIcon.h"
#include "ToolActions.h"

#include <QAction>

#include <algorithm>
#include <optional>

namespace {

using Command = WorkspaceActions::Command;

struct Row {
    Command command;
    QString name; ///< of the object
    QString text; ///< in a menu
    QList<QKeySequence> keys;
    QString symbolName;                        ///< empty: it has no button
    std::optional<PDFViewCommand> viewCommand; ///< none: the action is made here
};

/// Every command once, in the order of the enumeration.
const std::array<Row, 13>& rows() {
    static const std::array<Row, 13> table = {{
        {Command::copy, u"copy"_qs, u"&Copy"_qs, {Qt::CTRL | Qt::Key_C}, {}, PDFViewCommand::copy},
        {Command::selectAll, u"selectAll"_qs, u"Select &All"_qs, {Qt::CTRL | Qt::Key_A}, {}, PDFViewCommand::selectAll},
        {Command::zoomIn,
         u"zoomIn"_qs,
         u"Zoom &In"_qs,
         // Without Shift the key of the plus sign is "=" on many keyboards.
         {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal},
         u"plus.magnifyingglass"_qs,
         {}},
        {Command::zoomOut, u"zoomOut"_qs, u"Zoom &Out"_qs, {Qt::CTRL | Qt::Key_Minus}, u"minus.magnifyingglass"_qs, {}},
        {Command::zoomToFit,
         u"zoomToFit"_qs,
         u"Zoom to &Fit"_qs,
         {Qt::CTRL | Qt::Key_0},
         u"arrow.left.and.right.square"_qs,
         {}},
        {Command::previousPage,
         u"previousPage"_qs,
         u"&Previous Page"_qs,
         {Qt::CTRL | Qt::Key_Up},
         u"chevron.up"_qs,
         PDFViewCommand::goToPreviousPage},
        {Command::nextPage,
         u"nextPage"_qs,
         u"&Next Page"_qs,
         {Qt::CTRL | Qt::Key_Down},
         u"chevron.down"_qs,
         PDFViewCommand::goToNextPage},
        {Command::firstPage,
         u"firstPage"_qs,
         u"F&irst Page"_qs,
         {Qt::CTRL | Qt::Key_Home},
         {},
         PDFViewCommand::goToFirstPage},
        {Command::lastPage,
         u"lastPage"_qs,
         u"&Last Page"_qs,
         {Qt::CTRL | Qt::Key_End},
         {},
         PDFViewCommand::goToLastPage},
        {Command::back, u"back"_qs, u"&Back"_qs, {Qt::ALT | Qt::Key_Left}, {}, PDFViewCommand::goBack},
        {Command::forward, u"forward"_qs, u"&Forward"_qs, {Qt::ALT | Qt::Key_Right}, {}, PDFViewCommand::goForward},
        {Command::print, u"print"_qs, u"&Print…"_qs, {Qt::CTRL | Qt::Key_P}, {}, {}},
        {Command::askAssistant, u"askAssistant"_qs, u"&Ask"_qs, {Qt::CTRL | Qt::Key_K}, u"sparkles"_qs, {}},
    }};
    return table;
}

QString withoutMnemonic(QString text) {
    return text.remove(QLatin1Char('&'));
}

} // namespace

WorkspaceActions::WorkspaceActions(AnnotatingPDFView* view, std::shared_ptr<ToolState> toolState, QObject* parent)
    : QObject(parent), m_view(view), m_tools(new ToolActions(std::move(toolState), this)) {
    for (const Row& row : rows()) {
        QAction* action = view && row.viewCommand ? view->action(*row.viewCommand) : new QAction(this);
        action->setObjectName(row.name);
        action->setText(row.text);
        action->setShortcuts(row.keys);
        action->setShortcutContext(Qt::WindowShortcut);
        action->setToolTip(QStringLiteral("%1 (%2)").arg(withoutMnemonic(row.text),
                                                         row.keys.first().toString(QKeySequence::NativeText)));
        if (!row.symbolName.isEmpty()) {
            action->setIcon(SymbolIcon::icon(row.symbolName));
            action->setIconVisibleInMenu(false);
        }
        if (!view)
            action->setEnabled(false);
        m_actions[static_cast<std::size_t>(row.command)] = action;
    }
    QAction* ask = action(Command::askAssistant);
    ask->setCheckable(true);
    ask->setToolTip(
        u"Ask the AI assistant about this PDF (%1)"_qs.arg(ask->shortcut().toString(QKeySequence::NativeText)));
    if (!view)
        return;
    connect(action(Command::zoomIn), &QAction::triggered, this, [this] { zoomBy(zoomStep); });
    connect(action(Command::zoomOut), &QAction::triggered, this, [this] { zoomBy(-zoomStep); });
    connect(action(Command::zoomToFit), &QAction::triggered, this,
            [this] { m_view->setScaleFactor(m_view->scaleFactorForSizeToFit()); });
    connect(view, &PDFView::scaleChanged, this, &WorkspaceActions::updateZoomActions);
    updateZoomActions();
}

WorkspaceActions::~WorkspaceActions() = default;

QAction* WorkspaceActions::action(Command command) const {
    return m_actions[static_cast<std::size_t>(command)];
}

void WorkspaceActions::zoomBy(double step) {
    m_view->setScaleFactor(
        std::clamp(m_view->scaleFactor() + step, m_view->minScaleFactor(), m_view->maxScaleFactor()));
}

void WorkspaceActions::updateZoomActions() {
    action(Command::zoomIn)->setEnabled(m_view->scaleFactor() < m_view->maxScaleFactor());
    action(Command::zoomOut)->setEnabled(m_view->scaleFactor() > m_view->minScaleFactor());
}
