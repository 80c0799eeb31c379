#include "ThumbnailSidebar.h"

#include "AnnotatingPDFView.h"
#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "PlainMessage.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"
#include "ThumbnailList.h"
#include "ThumbnailModel.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

static constexpr int headerSymbolSide = 18;

static PageIndices setOf(const std::vector<int>& rows) {
    return {rows.begin(), rows.end()};
}

ThumbnailSidebar::ThumbnailSidebar(std::shared_ptr<PDFEditorDocument> document, PDFViewCoordinator& coordinator,
                                   QWidget* parent)
    : QWidget(parent), m_document(std::move(document)), m_coordinator(coordinator),
      m_list(new ThumbnailList(m_document)) {
    setObjectName(QStringLiteral("pageSidebar"));
    setAccessibleName(QStringLiteral("Page sidebar"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeHeader());
    layout->addWidget(m_list, 1);
    layout->addWidget(makeSelectionBar());
    setFocusProxy(m_list);
    setAcceptDrops(true);

    connect(m_list, &ThumbnailList::tapped, this, &ThumbnailSidebar::handleTap);
    connect(m_list, &ThumbnailList::menuRequested, this, &ThumbnailSidebar::showMenu);
    connect(m_list, &ThumbnailList::goRequested, this, &ThumbnailSidebar::goToPage);
    connect(m_list, &ThumbnailList::deletionRequested, this,
            [this](const std::vector<int>& rows) { deletePages(setOf(rows)); });
    connect(m_list, &ThumbnailList::moveRequested, this, [this](const std::vector<int>& rows, int step) {
        movePages(setOf(rows), step < 0 ? rows.front() - 1 : rows.back() + 2);
    });
    m_list->onDrop = [this](const QMimeData& dragged, int gap) { return handleDrop(dragged, gap); };
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ThumbnailSidebar::updateSelectionBar);
    connect(&m_list->model(), &ThumbnailModel::layoutChanged, this, &ThumbnailSidebar::followPages);
    const auto followCurrentPage = [this] { m_list->setCurrentPage(m_coordinator.currentPageIndex()); };
    connect(&coordinator, &PDFViewCoordinator::currentPageIndexChanged, this, followCurrentPage);
    followCurrentPage();
    if (const auto current = m_coordinator.currentPageIndex())
        m_list->setFocusedRow(*current);
    updateSelectionBar();
}

ThumbnailSidebar::~ThumbnailSidebar() = default;

QAction* ThumbnailSidebar::addCommand(const QString& name, const QString& text, std::function<void()> run) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, std::move(run));
    return action;
}

QWidget* ThumbnailSidebar::makeHeader() {
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("pageToolsMenu"));
    menu->addSection(QStringLiteral("Pages"));
    menu->addAction(addCommand(QStringLiteral("mergeDocument"), QStringLiteral("Merge PDF Into Document…"),
                               [this] { mergeDocument(); }));
    menu->addAction(addCommand(QStringLiteral("mergeMultipleFiles"), QStringLiteral("Merge Multiple Files…"),
                               [this] { mergeMultipleFiles(); }));
    menu->addAction(
        addCommand(QStringLiteral("splitDocument"), QStringLiteral("Split Document…"), [this] { splitDocument(); }));
    menu->addSection(QStringLiteral("Document"));
    menu->addAction(
        addCommand(QStringLiteral("editMetadata"), QStringLiteral("Edit Metadata…"), [this] { editMetadata(); }));
    menu->addAction(
        addCommand(QStringLiteral("editBookmarks"), QStringLiteral("Edit Bookmarks…"), [this] { editBookmarks(); }));
    menu->addAction(
        addCommand(QStringLiteral("addWatermark"), QStringLiteral("Add Watermark…"), [this] { addWatermark(); }));
    menu->addSection(QStringLiteral("Optimize"));
    menu->addAction(addCommand(QStringLiteral("compressDocument"), QStringLiteral("Compress PDF…"),
                               [this] { compressDocument(); }));
    menu->addAction(addCommand(QStringLiteral("recognizeText"), QStringLiteral("Recognize Text (OCR)…"),
                               [this] { recognizeText(); }));
    menu->addSection(QStringLiteral("Security"));
    menu->addAction(addCommand(QStringLiteral("setPassword"), QStringLiteral("Set Password (Encrypt)…"),
                               [this] { setPassword(); }));
    QAction* removal = addCommand(QStringLiteral("removePassword"), QStringLiteral("Remove Password (Decrypt)…"),
                                  [this] { removePassword(); });
    removal->setEnabled(m_document->wasPasswordProtected());
    connect(m_document.get(), &PDFEditorDocument::wasPasswordProtectedChanged, removal, &QAction::setEnabled);
    menu->addAction(removal);

    auto* title = new QLabel(QStringLiteral("Pages"));
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
    auto* tools = new ToolbarButton;
    tools->setObjectName(QStringLiteral("pageToolsButton"));
    tools->setIcon(SymbolIcon::icon(QStringLiteral("ellipsis.circle")));
    tools->setToolTip(QStringLiteral("Page tools"));
    tools->setAccessibleName(QStringLiteral("Page tools"));
    tools->setPopupMode(QToolButton::InstantPopup);
    tools->setMenu(menu);

    auto* header = new QWidget;
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(12, 4, 6, 4);
    layout->addWidget(new SymbolPicture(QStringLiteral("square.grid.2x2"), headerSymbolSide));
    layout->addWidget(title);
    layout->addStretch(1);
    layout->addWidget(tools);
    return header;
}

QWidget* ThumbnailSidebar::makeSelectionBar() {
    m_selectionBar = new QWidget;
    m_selectionBar->setObjectName(QStringLiteral("selectionBar"));
    m_selectionCount = new QLabel;
    m_selectionCount->setObjectName(QStringLiteral("selectionCount"));
    m_selectionCount->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(6);
    const auto addButton = [this, buttons](const QString& name, const QString& text, std::function<void()> run) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setMinimumWidth(1); // the sidebar may be narrow
        connect(button, &QPushButton::clicked, this, std::move(run));
        buttons->addWidget(button, 1);
    };
    addButton(QStringLiteral("extractSelection"), QStringLiteral("Extract…"), [this] { extractPages(selection()); });
    addButton(QStringLiteral("deleteSelection"), QStringLiteral("Delete"), [this] { deletePages(selection()); });
    auto* layout = new QVBoxLayout(m_selectionBar);
    layout->setContentsMargins(8, 6, 8, 8);
    layout->setSpacing(6);
    m_selectionCount->setAlignment(Qt::AlignCenter);
    layout->addWidget(m_selectionCount);
    layout->addLayout(buttons);
    return m_selectionBar;
}

PageIndices ThumbnailSidebar::selection() const {
    return setOf(m_list->selectedRows());
}

void ThumbnailSidebar::updateSelectionBar() {
    const PageIndices selected = selection();
    if (selected.empty() && m_selectionBar->isAncestorOf(focusWidget()))
        m_list->setFocus(); // before its button is gone
    m_selectionBar->setVisible(!selected.empty());
    m_selectionCount->setText(QStringLiteral("%1 selected").arg(selected.size()));
}

void ThumbnailSidebar::handleTap(int index, Qt::KeyboardModifiers modifiers) {
    const auto rowIndex = [this](int row) { return m_list->model().index(row); };
    QItemSelectionModel& selected = *m_list->selectionModel();
    m_list->setFocusedRow(index);
    if (modifiers & Qt::ControlModifier) {
        selected.select(rowIndex(index), QItemSelectionModel::Toggle);
    } else if ((modifiers & Qt::ShiftModifier) && m_lastClicked.isValid()) {
        const auto [first, last] = std::minmax({index, m_lastClicked.row()});
        selected.select({rowIndex(first), rowIndex(last)}, QItemSelectionModel::Select);
    } else {
        selected.clearSelection();
        goToPage(index);
    }
    m_lastClicked = rowIndex(index);
}

void ThumbnailSidebar::goToPage(int row) {
    if (AnnotatingPDFView* view = m_coordinator.pdfView())
        view->goToPage(m_document->pdfDocument()->page(row));
}

void ThumbnailSidebar::followPages() {
    updateSelectionBar();
    m_coordinator.updatePageIndicator();
    m_list->setCurrentPage(m_coordinator.currentPageIndex());
}

QPoint ThumbnailSidebar::placeInList(const QDropEvent& event) const {
    return m_list->viewport()->mapFrom(this, event.position().toPoint());
}

void ThumbnailSidebar::dragEnterEvent(QDragEnterEvent* event) {
    m_list->takeDrag(*event, placeInList(*event));
}

void ThumbnailSidebar::dragMoveEvent(QDragMoveEvent* event) {
    m_list->takeDrag(*event, placeInList(*event));
}

void ThumbnailSidebar::dragLeaveEvent(QDragLeaveEvent*) {
    m_list->forgetDrag();
}

void ThumbnailSidebar::dropEvent(QDropEvent* event) {
    m_list->takeDrop(*event, placeInList(*event));
}

void ThumbnailSidebar::showMenu(int row, QPoint globalPosition) {
    const PageIndices indices = setOf(m_list->rowsMeantBy(row));
    const bool isOne = indices.size() == 1;
    const auto count = static_cast<int>(indices.size());
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("pageMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* extract =
        menu->addAction(isOne ? QStringLiteral("Extract Page…") : QStringLiteral("Extract %1 Pages…").arg(count),
                        // Later, since it asks for a file, and the menu is to be gone by then.
                        this, [this, indices] {
                            QMetaObject::invokeMethod(
                                this, [=, this] { extractPages(indices); }, Qt::QueuedConnection);
                        });
    extract->setObjectName(QStringLiteral("extractPages"));
    QAction* remove =
        menu->addAction(isOne ? QStringLiteral("Delete Page") : QStringLiteral("Delete %1 Pages").arg(count), this,
                        [this, indices] { deletePages(indices); });
    remove->setObjectName(QStringLiteral("deletePages"));
    menu->popup(globalPosition);
}

std::optional<PageAlert> ThumbnailSidebar::pendingAlert() const {
    return m_alertBox ? m_alert : std::nullopt;
}

void ThumbnailSidebar::showAlert(const PageAlert& alert, const QString& symbolName) {
    delete m_alertBox; // there is one at a time
    m_alert = alert;
    m_alertBox = new QMessageBox(window());
    m_alertBox->setObjectName(QStringLiteral("pageAlert"));
    PlainMessage::setSymbol(*m_alertBox, symbolName);
    m_alertBox->setAttribute(Qt::WA_DeleteOnClose);
    PlainMessage::setText(*m_alertBox, alert.title, alert.message);
    m_alertBox->addButton(QMessageBox::Ok);
    m_alertBox->open();
}
