#include "DocumentTabBar.h"

#include "PageMimeData.h"
#include "Palette.h"
#include "PlainText.h"
#include "SymbolIcon.h"

#include <QAction>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QTabBar>
#include <QToolButton>

#include <algorithm>
#include <chrono>
#include <utility>

static constexpr int closeSymbolSide = 12;
static constexpr int markHeight = 3;
static constexpr int leastCharacters = 12; // of a name, before the tabs scroll

namespace {

/// Tabs that stay legible when there are many of them.
class Tabs : public QTabBar {
public:
    using QTabBar::QTabBar;

protected:
    QSize minimumTabSizeHint(int index) const override {
        QSize size = QTabBar::minimumTabSizeHint(index); // with next to no text
        const int legible = size.width() + leastCharacters * fontMetrics().averageCharWidth();
        size.setWidth(std::min(legible, tabSizeHint(index).width()));
        return size;
    }

    /// Marks the current tab: in a dark palette the style draws all of them alike.
    void paintEvent(QPaintEvent* event) override {
        QTabBar::paintEvent(event);
        if (count() == 0)
            return;
        QPainter painter(this);
        const QRect tab = tabRect(currentIndex());
        QColor tint = Palette::brandBlue;
        tint.setAlphaF(0.16F);
        painter.fillRect(tab, tint);
        painter.fillRect(QRect(tab.left(), tab.bottom() - markHeight + 1, tab.width(), markHeight), Palette::brandBlue);
    }
};

} // namespace

DocumentTabBar::DocumentTabBar(QAction* newTab, QWidget* parent) : QWidget(parent), m_tabs(new Tabs(this)) {
    setObjectName(QStringLiteral("documentTabBar"));
    m_tabs->setObjectName(QStringLiteral("documentTabs"));
    m_tabs->setAccessibleName(QStringLiteral("Documents"));
    m_tabs->setDocumentMode(true);
    m_tabs->setDrawBase(false);
    m_tabs->setMovable(true);
    m_tabs->setElideMode(Qt::ElideMiddle);
    m_tabs->setUsesScrollButtons(true);
    m_tabs->setAcceptDrops(true);
    m_tabs->installEventFilter(this);
    m_hoverTimer.setSingleShot(true);
    m_hoverTimer.setInterval(std::chrono::milliseconds(600));
    connect(&m_hoverTimer, &QTimer::timeout, this, [this] { m_tabs->setCurrentIndex(m_hoveredTab); });
    m_tabs->setContextMenuPolicy(Qt::CustomContextMenu);

    auto* newTabButton = new QToolButton(this);
    newTabButton->setObjectName(QStringLiteral("newTabButton"));
    newTabButton->setAccessibleName(QStringLiteral("New Tab"));
    newTabButton->setToolTip(QStringLiteral("New Tab (%1)").arg(newTab->shortcut().toString(QKeySequence::NativeText)));
    newTabButton->setIcon(SymbolIcon::icon(QStringLiteral("plus")));
    newTabButton->setAutoRaise(true);
    newTabButton->setFocusPolicy(Qt::TabFocus);
    connect(newTabButton, &QToolButton::clicked, newTab, &QAction::trigger);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 0);
    layout->setSpacing(4);
    layout->addWidget(m_tabs, 0);
    layout->addWidget(newTabButton);
    layout->addStretch(1);
    hide();

    connect(m_tabs, &QTabBar::currentChanged, this, [this] { Q_EMIT currentChanged(current()); });
    connect(m_tabs, &QTabBar::customContextMenuRequested, this, &DocumentTabBar::requestMenu);
}

DocumentTabBar::~DocumentTabBar() = default;

void DocumentTabBar::setShown(bool shown) {
    m_shown = shown;
    setVisible(m_shown && count() > 1);
}

int DocumentTabBar::count() const {
    return m_tabs->count();
}

QWidget* DocumentTabBar::content(int index) const {
    return m_tabs->tabData(index).value<QWidget*>();
}

QWidget* DocumentTabBar::current() const {
    return content(m_tabs->currentIndex());
}

QWidget* DocumentTabBar::neighbour(int steps) const {
    const int tabCount = count();
    return tabCount == 0 ? nullptr : content((m_tabs->currentIndex() + steps % tabCount + tabCount) % tabCount);
}

int DocumentTabBar::index(const QWidget* content) const {
    for (int i = 0; i < count(); ++i) {
        if (this->content(i) == content)
            return i;
    }
    return -1;
}

void DocumentTabBar::addTab(QWidget* content) {
    // A first tab becomes the current one at once, and must know its content by then.
    const QSignalBlocker blocker(m_tabs);
    const int index = m_tabs->addTab(QString());
    m_tabs->setTabData(index, QVariant::fromValue(content));
    m_tabs->setTabButton(index, QTabBar::RightSide, makeCloseButton(content));
    setVisible(m_shown && count() > 1);
}

QWidget* DocumentTabBar::makeCloseButton(QWidget* content) {
    auto* button = new QToolButton(m_tabs);
    button->setObjectName(QStringLiteral("closeTab"));
    button->setAccessibleName(QStringLiteral("Close Tab"));
    button->setToolTip(QStringLiteral("Close Tab"));
    button->setIcon(SymbolIcon::icon(QStringLiteral("xmark")));
    button->setIconSize({closeSymbolSide, closeSymbolSide});
    button->setAutoRaise(true);
    // With the keyboard the command "Close" is nearer.
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, content] { Q_EMIT closeRequested(content); });
    return button;
}

void DocumentTabBar::removeTab(QWidget* content) {
    m_tabs->removeTab(index(content));
    setVisible(m_shown && count() > 1);
}

void DocumentTabBar::setCurrent(QWidget* content) {
    m_tabs->setCurrentIndex(index(content));
}

void DocumentTabBar::setTitle(QWidget* content, const QString& title, bool isEdited, const QString& toolTip) {
    const int tab = index(content);
    const QString mark = isEdited ? QStringLiteral("• ") : QString();
    m_tabs->setTabText(tab, mark + PlainText::withoutMnemonics(title));
    m_tabs->setTabToolTip(tab, PlainText::toolTip(toolTip));
}

void DocumentTabBar::requestMenu(QPoint position) {
    // Beside the tabs, and from the keyboard, it is about the current one.
    const int tab = m_tabs->tabAt(position);
    if (QWidget* asked = tab >= 0 ? content(tab) : current())
        Q_EMIT menuRequested(asked, m_tabs->mapToGlobal(position));
}

/// True when pages are dragged. What else is dragged is the window's.
bool DocumentTabBar::handleDrag(QEvent* event) {
    if (event->type() == QEvent::DragLeave) {
        m_hoverTimer.stop();
        m_hoveredTab = -1;
        return false;
    }
    auto* drop = static_cast<QDropEvent*>(event); // entering and moving are kinds of it
    const PageMimeData* pages = PageMimeData::from(drop->mimeData());
    if (!pages) {
        event->ignore(); // the tabs themselves have no use for it
        return true;
    }
    const int tab = m_tabs->tabAt(drop->position().toPoint());
    if (std::exchange(m_hoveredTab, tab) != tab || !m_hoverTimer.isActive())
        m_hoverTimer.start();
    if (tab < 0 || event->type() == QEvent::Drop)
        m_hoverTimer.stop();
    drop->setDropAction(Qt::CopyAction);
    drop->setAccepted(tab >= 0);
    if (event->type() == QEvent::Drop && tab >= 0)
        Q_EMIT pagesDropped(content(tab), *pages);
    return true;
}

bool DocumentTabBar::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        if (watched == m_tabs)
            return handleDrag(event);
        break;
    default:
        break;
    }
    if (watched == m_tabs && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const int tab = m_tabs->tabAt(mouse->position().toPoint());
        if (mouse->button() == Qt::MiddleButton && tab >= 0) {
            Q_EMIT closeRequested(content(tab));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
