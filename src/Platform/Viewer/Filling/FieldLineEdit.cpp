#include "FieldLineEdit.h"

#include "FormPainting.h"

#include <QContextMenuEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QValidator>

#include <algorithm>
#include <cmath>
#include <utility>

/// What Qt leaves free at the sides of a line by itself, device-independent pixels.
static constexpr int ownInset = 2;
static constexpr double cursorWidth = 1.5;

namespace {

class FitsWidth : public QValidator {
public:
    explicit FitsWidth(QLineEdit& line) : QValidator(&line), m_line(line) {}

    State validate(QString& text, int& /*position*/) const override {
        const QMargins margins = m_line.textMargins();
        const double space = m_line.width() - margins.left() - margins.right() - 2 * ownInset;
        // A text that is too long already may become shorter.
        const bool fits = QFontMetricsF(m_line.font()).horizontalAdvance(text) <= space;
        return fits || text.size() < m_line.text().size() ? Acceptable : Invalid;
    }

private:
    const QLineEdit& m_line;
};

} // namespace

FieldLineEdit::FieldLineEdit(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setMinimumSize(1, 1);
}

FieldLineEdit::~FieldLineEdit() = default;

void FieldLineEdit::setColors(const QColor& text, const QColor& paper) {
    QPalette colors; // whatever isn't set follows the desktop
    colors.setColor(QPalette::Text, text);
    colors.setColor(QPalette::Base, paper);
    setPalette(colors);
}

void FieldLineEdit::setCells(int count) {
    m_cells = count;
}

void FieldLineEdit::setOffersChoices(bool offers) {
    m_offersChoices = offers;
    updateMargins();
}

void FieldLineEdit::setPlacement(double inset, double lift) {
    m_inset = inset;
    m_lift = lift;
    updateMargins();
}

void FieldLineEdit::updateMargins() {
    const int side = std::max(0, static_cast<int>(std::lround(m_inset)) - ownInset);
    const int arrow = m_offersChoices ? static_cast<int>(std::lround(FormPainting::arrowArea(rect()).width())) : 0;
    setTextMargins(side, 0, std::max(side, arrow), static_cast<int>(std::lround(2 * m_lift)));
}

void FieldLineEdit::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    updateMargins();
}

void FieldLineEdit::setFitsWidth(bool fits) {
    setValidator(fits ? new FitsWidth(*this) : nullptr);
}

void FieldLineEdit::setCursorAt(QPointF point) {
    setCursorPosition(m_cells > 0 ? gapAt(point) : cursorPositionAt(point.toPoint()));
    m_anchor = cursorPosition();
}

// Cells

double FieldLineEdit::cellWidth() const {
    return double(width()) / m_cells;
}

int FieldLineEdit::gapAt(QPointF point) const {
    return std::clamp(static_cast<int>(std::lround(point.x() / cellWidth())), 0, static_cast<int>(text().size()));
}

void FieldLineEdit::paintCells(QPainter& painter) const {
    const double cell = cellWidth();
    const QString shown = displayText().left(m_cells);
    const int selected = hasSelectedText() ? selectionStart() : 0;
    const int selectedEnd = hasSelectedText() ? selectionEnd() : 0;
    painter.fillRect(rect(), palette().color(QPalette::Base));
    for (int i = 0; i < shown.size(); ++i) {
        const QRectF box(i * cell, 0, cell, height() - 2 * m_lift);
        const bool isSelected = i >= selected && i < selectedEnd;
        if (isSelected)
            painter.fillRect(QRectF(i * cell, 0, cell, height()), palette().color(QPalette::Highlight));
        painter.setPen(palette().color(isSelected ? QPalette::HighlightedText : QPalette::Text));
        painter.drawText(box, Qt::AlignCenter | Qt::TextDontClip | Qt::TextSingleLine, QString(shown[i]));
    }
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    for (int i = 1; i < m_cells; ++i)
        painter.drawLine(QPointF(i * cell, 0), QPointF(i * cell, height()));
    if (hasFocus()) {
        const double line = QFontMetricsF(font()).height();
        const double x = std::clamp(cursorPosition() * cell, cursorWidth, width() - cursorWidth);
        painter.fillRect(QRectF(x - cursorWidth / 2, (height() - line) / 2 - m_lift, cursorWidth, line),
                         palette().color(QPalette::Text));
    }
}

void FieldLineEdit::paintEvent(QPaintEvent* event) {
    if (m_cells == 0) {
        QLineEdit::paintEvent(event);
        if (m_offersChoices) {
            QPainter painter(this);
            FormPainting::paintArrow(painter, rect());
        }
        return;
    }
    QPainter painter(this);
    paintCells(painter);
}

QVariant FieldLineEdit::inputMethodQuery(Qt::InputMethodQuery query) const {
    if (m_cells > 0 && query == Qt::ImCursorRectangle)
        return QRectF(cursorPosition() * cellWidth(), 0, cursorWidth, height());
    return QLineEdit::inputMethodQuery(query);
}

// Pointer and keys

bool FieldLineEdit::isOnArrow(QPointF point) const {
    return m_offersChoices && FormPainting::arrowArea(rect()).contains(point);
}

void FieldLineEdit::mousePressEvent(QMouseEvent* event) {
    m_isArrowPressed = event->button() == Qt::LeftButton && isOnArrow(event->position());
    if (m_isArrowPressed)
        return;
    if (m_cells == 0 || event->button() != Qt::LeftButton) {
        QLineEdit::mousePressEvent(event);
        return;
    }
    const int gap = gapAt(event->position());
    if (event->modifiers().testFlag(Qt::ShiftModifier))
        setSelection(m_anchor, gap - m_anchor);
    else
        setCursorPosition(m_anchor = gap);
}

void FieldLineEdit::mouseMoveEvent(QMouseEvent* event) {
    if (m_isArrowPressed)
        return;
    if (event->buttons() == Qt::NoButton)
        setCursor(isOnArrow(event->position()) ? Qt::PointingHandCursor : Qt::IBeamCursor);
    if (m_cells == 0)
        QLineEdit::mouseMoveEvent(event);
    else if (event->buttons().testFlag(Qt::LeftButton))
        setSelection(m_anchor, gapAt(event->position()) - m_anchor);
}

/// Not when it is pressed: the list would get the release.
void FieldLineEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (!std::exchange(m_isArrowPressed, false))
        QLineEdit::mouseReleaseEvent(event);
    else if (isOnArrow(event->position()))
        Q_EMIT choicesRequested();
}

void FieldLineEdit::mouseDoubleClickEvent(QMouseEvent* event) {
    if (isOnArrow(event->position()))
        return;
    m_cells == 0 ? QLineEdit::mouseDoubleClickEvent(event) : selectAll();
}

void FieldLineEdit::keyPressEvent(QKeyEvent* event) {
    const bool isDown = event->key() == Qt::Key_Down || event->key() == Qt::Key_F4;
    if (isDown)
        Q_EMIT choicesRequested();
    else
        QLineEdit::keyPressEvent(event);
    m_anchor = hasSelectedText() ? m_anchor : cursorPosition();
    // Up and Down would scroll the page below.
    if (isDown || event->key() == Qt::Key_Up)
        event->accept();
}

void FieldLineEdit::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* const menu = createStandardContextMenu();
    menu->setObjectName(QStringLiteral("fieldEditorMenu"));
    menu->setAccessibleName(accessibleName());
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}
