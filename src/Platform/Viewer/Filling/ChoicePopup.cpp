#include "ChoicePopup.h"

#include "ChoiceList.h"
#include "PDFFormField.h"
#include "PageSurface.h"

#include <QKeyEvent>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>

static constexpr int mostRows = 12;
static constexpr int rowPadding = 3; // device-independent pixels

ChoicePopup::ChoicePopup(PageSurface& view) : m_view(view) {}

ChoicePopup::~ChoicePopup() {
    delete m_list;
}

bool ChoicePopup::isOpen() const {
    return m_list && m_list->isVisible();
}

void ChoicePopup::open(const PDFFormField& field, const QRect& fieldRect, const QString& typed) {
    close();
    m_list = new ChoiceList(field, &m_view);
    m_list->setWindowFlags(Qt::Popup);
    m_list->setAttribute(Qt::WA_DeleteOnClose);
    m_list->setAttribute(Qt::WA_WindowPropagation);
    m_list->setObjectName(QStringLiteral("formChoices"));
    m_list->setAccessibleName(field.userName());
    m_list->setFrameShape(QFrame::StyledPanel);
    m_list->setSpacing(0);
    m_list->setMouseTracking(true);
    m_list->setStyleSheet(
        QStringLiteral("QListView::item { padding: %1px %2px; }").arg(rowPadding).arg(2 * rowPadding));
    m_list->installEventFilter(this);
    connect(m_list, &QListWidget::itemEntered, m_list,
            [list = m_list.data()](QListWidgetItem* item) { list->setCurrentItem(item); });
    connect(m_list, &QListWidget::itemClicked, this, &ChoicePopup::choose);
    place(fieldRect);
    m_list->show();
    m_list->setFocus(Qt::PopupFocusReason);
    m_list->scrollToItem(m_list->currentItem());
    if (!typed.isEmpty())
        m_list->keyboardSearch(typed);
}

void ChoicePopup::place(const QRect& fieldRect) {
    const int rows = std::clamp(m_list->count(), 1, mostRows);
    const int row = std::max(m_list->sizeHintForRow(0), 1);
    const int frame = 2 * m_list->frameWidth();
    const int bar = m_list->count() > mostRows ? m_list->verticalScrollBar()->sizeHint().width() : 0;
    const QRect screen = m_view.screen()->availableGeometry();
    const QRect anchor(m_view.viewport()->mapToGlobal(fieldRect.topLeft()), fieldRect.size());
    const int width = std::min(std::max(anchor.width(), m_list->sizeHintForColumn(0) + frame + bar), screen.width());
    const int height = std::min(rows * row + frame, screen.height());
    const bool fitsBelow = anchor.bottom() + height <= screen.bottom();
    const int top = fitsBelow || anchor.top() - height < screen.top() ? anchor.bottom() + 1 : anchor.top() - height;
    const int left = std::clamp(anchor.left(), screen.left(), std::max(screen.left(), screen.right() + 1 - width));
    m_list->setGeometry(left, std::clamp(top, screen.top(), std::max(screen.top(), screen.bottom() + 1 - height)),
                        width, height);
}

void ChoicePopup::close() {
    if (m_list)
        m_list->close();
    m_list.clear();
}

void ChoicePopup::choose(const QListWidgetItem* item) {
    if (!item)
        return;
    const QString value = item->data(ChoiceList::exportValueRole).toString();
    const QString label = item->text();
    close();
    Q_EMIT chosen(value, label);
}

bool ChoicePopup::eventFilter(QObject* watched, QEvent* event) {
    if (!m_list || watched != m_list || event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        choose(m_list->currentItem());
        return true;
    case Qt::Key_Escape:
    case Qt::Key_F4:
        close();
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}
