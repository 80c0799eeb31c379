#include "BookmarksEditorView.h"

#include "AnnotatingPDFView.h"
#include "BookmarkList.h"
#include "BookmarkModel.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "SheetParts.h"
#include "Shortcuts.h"
#include "SymbolIcon.h"
#include "UndoManager.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStackedLayout>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

static constexpr QSize usualSize(520, 440); // pixels

static QToolButton* arrow(const QString& symbol, const QString& name, const QString& text, const QString& help) {
    auto* button = new QToolButton;
    button->setObjectName(name);
    button->setIcon(SymbolIcon::icon(symbol));
    button->setAccessibleName(text);
    button->setToolTip(help);
    return button;
}

BookmarksEditorView::BookmarksEditorView(std::shared_ptr<PDFEditorDocument> document, PDFViewCoordinator& coordinator,
                                         QWidget* parent)
    : QDialog(parent), m_document(std::move(document)), m_coordinator(coordinator),
      m_model(new BookmarkModel(m_document, this)), m_list(new BookmarkList(*m_model)),
      m_empty(new QLabel(QStringLiteral("No bookmarks yet."))),
      m_delete(SheetParts::button(QStringLiteral("Delete"), QStringLiteral("deleteBookmarks"))),
      m_up(arrow(QStringLiteral("chevron.up"), QStringLiteral("moveBookmarkUp"), QStringLiteral("Move Up"),
                 QStringLiteral("Move up among the bookmarks of the same page (Alt+Up)"))),
      m_down(arrow(QStringLiteral("chevron.down"), QStringLiteral("moveBookmarkDown"), QStringLiteral("Move Down"),
                   QStringLiteral("Move down among the bookmarks of the same page (Alt+Down)"))) {
    setObjectName(QStringLiteral("bookmarksSheet"));
    makeLayout();
    makeUndo();
    connect(m_list, &BookmarkList::goRequested, this, &BookmarksEditorView::goToPage);
    connect(m_list, &BookmarkList::selectionChangedToRows, this, &BookmarksEditorView::showState);
    connect(m_model, &QAbstractItemModel::modelReset, this, &BookmarksEditorView::showState);
    connect(m_model, &QAbstractItemModel::layoutChanged, this, &BookmarksEditorView::showState);
    connect(m_document.get(), &Document::commitEditingRequested, m_list, &BookmarkList::finishEditing);
    resize(usualSize);
    showState();
}

BookmarksEditorView::~BookmarksEditorView() = default;

void BookmarksEditorView::makeLayout() {
    QVBoxLayout* layout = SheetParts::begin(*this, QStringLiteral("Bookmarks"));
    m_content = new QStackedLayout;
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setObjectName(QStringLiteral("noBookmarks"));
    m_content->addWidget(m_list);
    m_content->addWidget(m_empty);
    layout->addLayout(m_content, 1);

    auto* add = SheetParts::button(QStringLiteral("Add Bookmark"), QStringLiteral("addBookmark"));
    add->setToolTip(QStringLiteral("Add a bookmark for the page that is shown"));
    auto* done = SheetParts::button(QStringLiteral("Done"), QStringLiteral("bookmarksDone"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(m_delete);
    buttons->addWidget(m_up);
    buttons->addWidget(m_down);
    buttons->addStretch();
    buttons->addWidget(done);
    layout->addLayout(buttons);
    connect(add, &QPushButton::clicked, this, &BookmarksEditorView::addBookmark);
    connect(m_delete, &QPushButton::clicked, m_list, &BookmarkList::removeSelected);
    connect(m_up, &QToolButton::clicked, m_list, [this] { m_list->moveSelected(-1); });
    connect(m_down, &QToolButton::clicked, m_list, [this] { m_list->moveSelected(1); });
    connect(done, &QPushButton::clicked, this, &QDialog::accept);
}

/// The window's own keys don't reach it while the sheet is open.
void BookmarksEditorView::makeUndo() {
    const std::shared_ptr<UndoManager> undoManager = m_document->undoManager();
    const auto addCommand = [this](const QString& name, auto run) {
        auto* action = new QAction(this);
        action->setObjectName(name + QStringLiteral("Bookmarks"));
        action->setShortcuts(Shortcuts::of(name));
        addAction(action);
        connect(action, &QAction::triggered, this, run);
    };
    addCommand(QStringLiteral("undo"), [this, undoManager, opened = undoManager->state()] {
        if (undoManager->state() == opened || !undoManager->canUndo())
            return;
        undoManager->undo();
        ++m_undone;
    });
    addCommand(QStringLiteral("redo"), [this, undoManager] {
        if (m_undone == 0 || !undoManager->canRedo())
            return;
        undoManager->redo();
        --m_undone;
    });
    connect(undoManager.get(), &UndoManager::changed, this, [this, undoManager] {
        if (!undoManager->canRedo())
            m_undone = 0; // by something that was done anew
    });
}

void BookmarksEditorView::addBookmark() {
    m_list->finishEditing();
    const int page = m_coordinator.currentPageIndex().value_or(0);
    m_list->editRow(m_model->add(QStringLiteral("Page %1").arg(page + 1), page));
}

void BookmarksEditorView::done(int result) {
    m_list->finishEditing();
    QDialog::done(result);
}

void BookmarksEditorView::goToPage(int row) {
    if (AnnotatingPDFView* view = m_coordinator.pdfView())
        view->goToPage(m_document->pdfDocument()->page(m_model->pageIndex(row)));
}

void BookmarksEditorView::showState() {
    m_content->setCurrentIndex(m_model->rowCount() > 0 ? 0 : 1);
    m_delete->setEnabled(!m_list->selectedRows().empty());
    m_up->setEnabled(m_list->canMoveSelected(-1));
    m_down->setEnabled(m_list->canMoveSelected(1));
}
