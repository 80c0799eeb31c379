#include "WorkspaceActions.h"

#include "AnnotatingPDFView.h"
#include "PDFPage.h"
#include "Shortcuts.h"
#include "SymbolIcon.h"
#include "ToolActions.h"

#include <QAction>
#include <QEvent>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using Command = WorkspaceActions::Command;

constexpr double percentsOfOne = 100;
constexpr double sameScale = 0.0005; // less than what half a percent shows

struct Row {
    Command command;
    QString name;                              ///< of the object
    QString text;                              ///< in a menu
    QString symbolName;                        ///< empty: it has no button
    std::optional<PDFViewCommand> viewCommand; ///< none: the action is made here
};

/// Every command once, in the order of the enumeration.
const std::array<Row, 16>& rows() {
    static const std::array<Row, 16> table = {{
        {Command::copy, QStringLiteral("copy"), QStringLiteral("&Copy"), {}, PDFViewCommand::copy},
        {Command::selectAll, QStringLiteral("selectAll"), QStringLiteral("Select &All"), {}, PDFViewCommand::selectAll},
        {Command::zoomIn,
         QStringLiteral("zoomIn"),
         QStringLiteral("Zoom &In"),
         QStringLiteral("plus.magnifyingglass"),
         {}},
        {Command::zoomOut,
         QStringLiteral("zoomOut"),
         QStringLiteral("Zoom &Out"),
         QStringLiteral("minus.magnifyingglass"),
         {}},
        {Command::zoomToFit,
         QStringLiteral("zoomToFit"),
         QStringLiteral("Zoom to &Fit"),
         QStringLiteral("arrow.left.and.right.square"),
         {}},
        {Command::previousPage, QStringLiteral("previousPage"), QStringLiteral("&Previous Page"),
         QStringLiteral("chevron.up"), PDFViewCommand::goToPreviousPage},
        {Command::nextPage, QStringLiteral("nextPage"), QStringLiteral("&Next Page"), QStringLiteral("chevron.down"),
         PDFViewCommand::goToNextPage},
        {Command::firstPage,
         QStringLiteral("firstPage"),
         QStringLiteral("F&irst Page"),
         {},
         PDFViewCommand::goToFirstPage},
        {Command::lastPage, QStringLiteral("lastPage"), QStringLiteral("&Last Page"), {}, PDFViewCommand::goToLastPage},
        {Command::back, QStringLiteral("back"), QStringLiteral("&Back"), {}, PDFViewCommand::goBack},
        {Command::forward, QStringLiteral("forward"), QStringLiteral("&Forward"), {}, PDFViewCommand::goForward},
        {Command::print, QStringLiteral("print"), QStringLiteral("&Print…"), {}, {}},
        {Command::toggleSidebar,
         QStringLiteral("toggleSidebar"),
         QStringLiteral("Page &Sidebar"),
         QStringLiteral("sidebar.left"),
         {}},
        {Command::ocrPage,
         QStringLiteral("ocrPage"),
         QStringLiteral("&OCR Page"),
         QStringLiteral("text.viewfinder"),
         {}},
        {Command::applyRedactions,
         QStringLiteral("applyRedactions"),
         QStringLiteral("Apply &Redactions"),
         QStringLiteral("eye.slash"),
         {}},
        {Command::askAssistant, QStringLiteral("askAssistant"), QStringLiteral("&Ask"), QStringLiteral("sparkles"), {}},
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
        action->setShortcuts(Shortcuts::of(row.name));
        action->setShortcutContext(Qt::WindowShortcut);
        action->setToolTip(QStringLiteral("%1 (%2)").arg(withoutMnemonic(row.text), Shortcuts::text(row.name)));
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
    ask->setToolTip(QStringLiteral("Ask the AI assistant about this PDF (%1)").arg(Shortcuts::text(ask->objectName())));
    QAction* sidebar = action(Command::toggleSidebar);
    sidebar->setCheckable(true);
    sidebar->setToolTip(QStringLiteral("Toggle Page Sidebar (%1)").arg(Shortcuts::text(sidebar->objectName())));
    action(Command::ocrPage)
        ->setToolTip(QStringLiteral("Recognize text on the current page, copy it out, and make it selectable if it "
                                    "wasn't already"));
    QAction* apply = action(Command::applyRedactions);
    apply->setToolTip(QStringLiteral("Apply redactions: replace each marked page by a picture without what is marked"));
    apply->setIconText(QStringLiteral("Apply")); // on its button
    apply->setVisible(false);
    action(Command::zoomToFit)->setCheckable(true);
    addScales();
    if (!view)
        return;
    connect(action(Command::zoomIn), &QAction::triggered, this, [this] { zoomBy(zoomStep); });
    connect(action(Command::zoomOut), &QAction::triggered, this, [this] { zoomBy(-zoomStep); });
    connect(action(Command::zoomToFit), &QAction::triggered, this, [this] {
        m_view->setScaleFactor(m_view->scaleFactorForSizeToFit());
        updateZoomActions(); // a check mark that was there has gone by the click
    });
    connect(view, &PDFView::scaleChanged, this, &WorkspaceActions::updateZoomActions);
    // The scale of the whole page depends on the page, and on the height of the view, which changes no scale.
    connect(view, &PDFView::pageChanged, this, &WorkspaceActions::updateZoomActions);
    view->viewport()->installEventFilter(this);
    updateZoomActions();
}

WorkspaceActions::~WorkspaceActions() = default;

bool WorkspaceActions::eventFilter(QObject* watched, QEvent* event) {
    // The view has its own layout in order only when it has seen the event too.
    if (event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &WorkspaceActions::updateZoomActions, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

QAction* WorkspaceActions::action(Command command) const {
    return m_actions[static_cast<std::size_t>(command)];
}

void WorkspaceActions::zoomBy(double step) {
    m_view->setScaleFactor(
        std::clamp(m_view->scaleFactor() + step, m_view->minScaleFactor(), m_view->maxScaleFactor()));
}

void WorkspaceActions::addScales() {
    for (const int percent : {50, 75, 100, 125, 150, 200, 300, 400}) {
        auto* scale = new QAction(QStringLiteral("%1%").arg(percent), this);
        scale->setObjectName(QStringLiteral("scale%1").arg(percent));
        scale->setData(percent);
        m_scales.append(scale);
    }
    auto* wholePage = new QAction(QStringLiteral("Whole Pa&ge"), this);
    wholePage->setObjectName(QStringLiteral("wholePage"));
    m_scales.append(wholePage);
    for (QAction* scale : m_scales) {
        scale->setCheckable(true);
        scale->setEnabled(!m_view.isNull());
        connect(scale, &QAction::triggered, this, [this, scale] {
            const std::shared_ptr<PDFPage> page = m_view->currentPage();
            m_view->setScaleFactor(scale->data().isValid() ? scale->data().toInt() / percentsOfOne
                                                           : scaleOfWholePage());
            if (!scale->data().isValid() && page)
                m_view->goToPage(page);
            updateZoomActions();
        });
    }
}

/// At which all of the current page is in the view.
double WorkspaceActions::scaleOfWholePage() const {
    const std::shared_ptr<PDFPage> page = m_view->currentPage();
    if (!page)
        return m_view->scaleFactorForSizeToFit();
    const QSizeF shown = m_view->convertFromPage(page->bounds(m_view->displayBox()), *page).size();
    return std::min(m_view->scaleFactorForSizeToFit(),
                    m_view->viewport()->height() / (shown.height() / m_view->scaleFactor()));
}

void WorkspaceActions::updateZoomActions() {
    if (!m_view)
        return; // it has gone since this was queued
    const double present = m_view->scaleFactor();
    const auto isPresent = [present](double scale) { return std::abs(scale - present) < sameScale; };
    for (QAction* scale : m_scales)
        scale->setChecked(
            isPresent(scale->data().isValid() ? scale->data().toInt() / percentsOfOne : scaleOfWholePage()));
    QAction* fit = action(Command::zoomToFit);
    fit->setChecked(m_view->autoScales() || isPresent(m_view->scaleFactorForSizeToFit()));
    fit->setToolTip(QStringLiteral("%1 (%2) – now %3%")
                        .arg(withoutMnemonic(fit->text()), Shortcuts::text(fit->objectName()))
                        .arg(std::lround(present * percentsOfOne)));
    action(Command::zoomIn)->setEnabled(m_view->scaleFactor() < m_view->maxScaleFactor());
    action(Command::zoomOut)->setEnabled(m_view->scaleFactor() > m_view->minScaleFactor());
}
