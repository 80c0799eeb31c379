#include "PDFViewCommands.h"

#include "PDFDocument.h"

#include <QAction>

namespace {

struct Row {
    PDFViewCommand command;
    const char* name;
    const char* text;
    void (PDFView::*operation)();
};

constexpr Row rows[] = {
    {PDFViewCommand::copy, "copyAction", QT_TRANSLATE_NOOP("PDFView", "Copy"), &PDFView::copy},
    {PDFViewCommand::selectAll, "selectAllAction", QT_TRANSLATE_NOOP("PDFView", "Select All"), &PDFView::selectAll},
    {PDFViewCommand::goBack, "goBackAction", QT_TRANSLATE_NOOP("PDFView", "Back"), &PDFView::goBack},
    {PDFViewCommand::goForward, "goForwardAction", QT_TRANSLATE_NOOP("PDFView", "Forward"), &PDFView::goForward},
    {PDFViewCommand::goToFirstPage, "firstPageAction", QT_TRANSLATE_NOOP("PDFView", "First Page"),
     &PDFView::goToFirstPage},
    {PDFViewCommand::goToLastPage, "lastPageAction", QT_TRANSLATE_NOOP("PDFView", "Last Page"), &PDFView::goToLastPage},
    {PDFViewCommand::goToNextPage, "nextPageAction", QT_TRANSLATE_NOOP("PDFView", "Next Page"), &PDFView::goToNextPage},
    {PDFViewCommand::goToPreviousPage, "previousPageAction", QT_TRANSLATE_NOOP("PDFView", "Previous Page"),
     &PDFView::goToPreviousPage},
};

} // namespace

PDFViewCommands::PDFViewCommands(PDFView& view) : m_view(view) {
    for (const Row& row : rows) {
        auto* action = new QAction(PDFView::tr(row.text), &view);
        action->setObjectName(QLatin1String(row.name));
        QObject::connect(action, &QAction::triggered, &view, row.operation);
        view.addAction(action);
        m_actions.emplace(row.command, action);
    }
    for (const auto signal : {&PDFView::pageChanged, &PDFView::selectionChanged, &PDFView::historyChanged})
        QObject::connect(&view, signal, &view, [this] { updateEnabled(); });
}

void PDFViewCommands::updateEnabled() const {
    const bool hasPages = m_view.currentPageIndex().has_value();
    const auto enable = [this](PDFViewCommand command, bool enabled) { action(command)->setEnabled(enabled); };
    enable(PDFViewCommand::copy, m_view.hasSelection());
    enable(PDFViewCommand::selectAll, hasPages);
    enable(PDFViewCommand::goBack, m_view.canGoBack());
    enable(PDFViewCommand::goForward, m_view.canGoForward());
    enable(PDFViewCommand::goToFirstPage, hasPages);
    enable(PDFViewCommand::goToLastPage, hasPages);
    enable(PDFViewCommand::goToNextPage, m_view.canGoToNextPage());
    enable(PDFViewCommand::goToPreviousPage, m_view.canGoToPreviousPage());
}
