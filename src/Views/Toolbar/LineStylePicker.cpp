#include "LineStylePicker.h"

#include "LineEndStyle.h"
#include "LineStyleTile.h"
#include "ToolState.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>

static constexpr int margin = 6;
static constexpr qreal cornerRadius = 10;

LineStylePicker::LineStylePicker(std::shared_ptr<ToolState> toolState, QWidget* container)
    : QFrame(container), m_toolState(std::move(toolState)), m_tiles(new QButtonGroup(this)) {
    setObjectName(QStringLiteral("lineStylePicker"));
    setAccessibleName(QStringLiteral("Line end styles"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(2);
    m_tiles->setExclusive(false);
    for (const LineEndStyleInfo& info : allLineEndStyles()) {
        auto* tile = new LineStyleTile(info);
        m_tiles->addButton(tile, static_cast<int>(info.style));
        layout->addWidget(tile);
    }
    connect(m_tiles, &QButtonGroup::idClicked, this, [this](int id) {
        m_toolState->setLineEndStyle(static_cast<PDFLineStyle>(id));
        showCurrent();
        dismiss();
    });
    connect(m_toolState.get(), &ToolState::lineEndStyleChanged, this, &LineStylePicker::showCurrent);
    connect(qApp, &QApplication::focusChanged, this, &LineStylePicker::focusMoved);
    showCurrent();
    hide();
}

LineStylePicker::~LineStylePicker() = default;

void LineStylePicker::showCurrent() {
    for (QAbstractButton* tile : m_tiles->buttons())
        tile->setChecked(m_tiles->id(tile) == static_cast<int>(m_toolState->lineEndStyle()));
}

void LineStylePicker::popUp(const QWidget& anchor) {
    QWidget* container = parentWidget();
    adjustSize();
    const QPoint below = anchor.mapTo(container, QPoint(0, anchor.height() + 2));
    move(qBound(0, below.x(), qMax(0, container->width() - width())), below.y());
    show();
    raise();
}

void LineStylePicker::popUpWithFocus(const QWidget& anchor) {
    m_formerFocus = QApplication::focusWidget();
    popUp(anchor);
    m_tiles->button(static_cast<int>(m_toolState->lineEndStyle()))->setFocus(Qt::PopupFocusReason);
}

void LineStylePicker::dismiss() {
    QWidget* const focus = QApplication::focusWidget();
    const QPointer<QWidget> formerFocus = focus && isAncestorOf(focus) ? m_formerFocus : nullptr;
    m_formerFocus = nullptr;
    hide();
    if (formerFocus)
        formerFocus->setFocus(Qt::PopupFocusReason);
}

void LineStylePicker::focusMoved(QWidget* from, QWidget* to) {
    if (from && isAncestorOf(from) && !(to && isAncestorOf(to)))
        hide();
}

void LineStylePicker::keyPressEvent(QKeyEvent* event) {
    const QList<QAbstractButton*> tiles = m_tiles->buttons();
    const qsizetype focused = tiles.indexOf(qobject_cast<QAbstractButton*>(focusWidget()));
    const auto focusOn = [&tiles](qsizetype index) {
        if (index >= 0 && index < tiles.size())
            tiles[index]->setFocus(Qt::TabFocusReason);
    };
    switch (event->key()) {
    case Qt::Key_Escape:
        dismiss();
        break;
    case Qt::Key_Left:
        focusOn(focused - 1);
        break;
    case Qt::Key_Right:
        focusOn(focused + 1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (focused >= 0)
            tiles[focused]->click();
        break;
    default:
        QFrame::keyPressEvent(event);
    }
}

void LineStylePicker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor border = palette().color(QPalette::WindowText);
    border.setAlphaF(0.3F);
    painter.setPen(border);
    painter.setBrush(palette().color(QPalette::Window));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}
