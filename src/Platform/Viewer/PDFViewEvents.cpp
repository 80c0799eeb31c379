#include "PDFView.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFViewParts.h"
#include "PageText.h"
#include "PlainText.h"

#include <QAction>
#include <QApplication>
#include <QHelpEvent>
#include <QMenu>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QScrollBar>
#include <QToolTip>
#include <QTouchEvent>
#include <QWheelEvent>

#include <cmath>

/// Device-independent pixels.
static constexpr double wheelLine = 40;
static constexpr double arrowStep = 60;
static constexpr double screenOverlap = 40; // of the last screen that stays in sight after a step of one
static constexpr double focusRingWidth = 2;
/// Notches of the wheel that double the scale.
static constexpr double notchesToDouble = 4;
static constexpr double notch = 120; // eighths of a degree

// Painting

void PDFView::paintEvent(QPaintEvent* event) {
    PageColumn& column = m_parts->column();
    if (devicePixelRatioF() != column.devicePixelRatio())
        m_parts->updateViewport(); // the window came to another screen
    const double ratio = column.devicePixelRatio();

    QPainter painter(viewport());
    painter.save();
    painter.scale(1 / ratio, 1 / ratio); // from here on in device pixels
    const QRectF view = m_parts->deviceView();
    const QRect rect = event->rect();
    const QRectF exposed = QRectF(QRectF(QPointF(rect.topLeft()) * ratio, QSizeF(rect.size()) * ratio).toAlignedRect())
                               .adjusted(-1, -1, 1, 1);

    const std::vector<PlacedPage> pages = m_parts->pages(false);
    QRegion background(exposed.toAlignedRect());
    for (const PlacedPage& page : pages)
        background -= (page.rect & exposed).toRect();
    for (const QRect& part : background)
        painter.fillRect(part, backgroundColor());

    const PagePainter::Style style{ratio, displaysPageBreaks(), palette().color(QPalette::Active, QPalette::Highlight),
                                   font()};
    for (const PlacedPage& page : pages) {
        std::vector<QRectF> selected;
        if (page.page && hasSelection()) {
            if (const auto text = m_parts->texts.text(page.look.content))
                selected = m_parts->selection.rects(*page.page, *text);
        }
        m_parts->painter.paint(painter, page, selected, m_parts->tiles, view, exposed, style);
    }
    painter.restore();

    m_parts->forms.paint(painter, rect);
    painter.save();
    drawOverPages(painter);
    painter.restore();
    painter.setPen(QPen(palette().color(QPalette::Active, QPalette::Highlight), focusRingWidth));
    const double half = focusRingWidth / 2;
    if (const auto link = m_parts->links.focused())
        painter.drawRect(link->rect.adjusted(-half, -half, half, half));
    if (const auto remark = m_parts->remarks.focused())
        painter.drawRect(remark->rect.adjusted(-half, -half, half, half));
    if (m_parts->keyboardFocus)
        painter.drawRect(QRectF(viewport()->rect()).adjusted(half, half, -half, -half));

    if (!pages.empty() && isSharp())
        Q_EMIT pageDrawn(!std::exchange(m_parts->hasDrawnSharp, true));
}

void PDFView::drawOverPages(QPainter&) {}

void PDFView::resizeEvent(QResizeEvent*) {
    m_parts->updateViewport();
}

void PDFView::showEvent(QShowEvent* event) {
    PageSurface::showEvent(event);
    m_parts->updateViewport();
    m_parts->plan();
}

void PDFView::hideEvent(QHideEvent* event) {
    PageSurface::hideEvent(event);
    m_parts->tiles.keepStandIns();
}

void PDFView::changeEvent(QEvent* event) {
    PageSurface::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        viewport()->update();
}

/// The column follows the scroll bars by itself and repaints.
void PDFView::scrollContentsBy(int, int) {}

bool PDFView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const auto field = m_parts->forms.toolTip(help->pos());
        const auto link = m_parts->links.linkAt(help->pos());
        if (field)
            QToolTip::showText(help->globalPos(), PlainText::toolTip(field->text), viewport(),
                               field->rect.toAlignedRect());
        else if (link)
            QToolTip::showText(help->globalPos(), PlainText::toolTip(m_parts->links.describe(*link->annotation)),
                               viewport(), link->rect.toAlignedRect());
        else if (!m_parts->showRemarkTip(help->pos(), help->globalPos()))
            QToolTip::hideText();
        return true;
    }
    case QEvent::NativeGesture: {
        const auto* gesture = static_cast<QNativeGestureEvent*>(event);
        if (gesture->gestureType() != Qt::ZoomNativeGesture)
            break;
        zoomAt(gesture->position(), 1 + gesture->value());
        return true;
    }
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        m_parts->touch.touch(*static_cast<QTouchEvent*>(event));
        return true;
    case QEvent::Leave:
        m_parts->pointer.reset();
        m_parts->forms.pointerLeft();
        break;
    default:
        break;
    }
    return PageSurface::viewportEvent(event);
}

// Wheel and keys

void PDFView::wheelEvent(QWheelEvent* event) {
    event->accept();
    m_parts->touch.stop();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        zoomAt(event->position(), std::exp2(event->angleDelta().y() / notch / notchesToDouble));
        return;
    }
    PageColumn& column = m_parts->column();
    ViewScroller& scroller = column.scroller();
    const double ratio = column.devicePixelRatio();
    // What X11 reports in pixels can't be relied on.
    const bool inPixels = !event->pixelDelta().isNull() && QGuiApplication::platformName() != QLatin1String("xcb");
    const double lines = QApplication::wheelScrollLines() * wheelLine;
    QPointF way = inPixels ? -QPointF(event->pixelDelta()) : -QPointF(event->angleDelta()) / notch * lines;
    if (event->modifiers().testFlag(Qt::ShiftModifier) && way.x() == 0)
        way = way.transposed();
    // A touch pad sends many small steps that are smooth by themselves; the notch of a wheel is not.
    const bool isNotch =
        !inPixels && event->angleDelta().x() % int(notch) == 0 && event->angleDelta().y() % int(notch) == 0;
    if (isNotch)
        scroller.glideBy(way * ratio);
    else
        scroller.scrollBy(way * ratio);
}

void PDFView::keyPressEvent(QKeyEvent* event) {
    PageColumn& column = m_parts->column();
    ViewScroller& scroller = column.scroller();
    const double ratio = column.devicePixelRatio();
    const double screen = std::max(viewport()->height() - screenOverlap, viewport()->height() / 2.0);
    const auto glide = [&](double x, double y) { scroller.glideBy(QPointF(x, y) * ratio); };
    const auto modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const bool toTheSide = scroller.maximum().x() > 0;
    event->accept();

    if (m_parts->forms.pressKey(*event))
        return;
    if (modifiers == Qt::ShiftModifier && event->key() == Qt::Key_Space) {
        glide(0, -screen);
        return;
    }
    if (modifiers == Qt::ShiftModifier && event->key() == Qt::Key_F10)
        return showMenu(menuPoint());
    if (modifiers != Qt::NoModifier) {
        event->ignore();
        return;
    }
    const auto remark = m_parts->remarks.focused();
    if (remark && (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        return m_parts->read(*remark, std::nullopt);
    switch (event->key()) {
    case Qt::Key_PageDown:
    case Qt::Key_Space:
        return glide(0, screen);
    case Qt::Key_PageUp:
        return glide(0, -screen);
    case Qt::Key_Down:
        return glide(0, arrowStep);
    case Qt::Key_Up:
        return glide(0, -arrowStep);
    case Qt::Key_Right:
        return toTheSide ? glide(arrowStep, 0) : goToNextPage();
    case Qt::Key_Left:
        return toTheSide ? glide(-arrowStep, 0) : goToPreviousPage();
    case Qt::Key_Home:
        return column.goToPage(column.currentPage());
    case Qt::Key_End:
        return column.goToPageEnd(column.currentPage());
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (const auto link = m_parts->links.focused())
            return m_parts->follow(*link->annotation);
        break;
    case Qt::Key_Escape:
        if (cancelOperation())
            return;
        break;
    default:
        break;
    }
    event->ignore();
}

bool PDFView::cancelOperation() {
    if (isReadingText()) {
        cancelReadingText();
        return true;
    }
    if (m_parts->links.focused() || m_parts->remarks.focused() || m_parts->forms.focused()) {
        m_parts->leaveFocus();
        return true;
    }
    const bool selected = hasSelection();
    clearSelection();
    return selected;
}

bool PDFView::focusNextPrevChild(bool next) {
    return m_parts->moveFocus(next) || PageSurface::focusNextPrevChild(next);
}

void PDFView::focusInEvent(QFocusEvent* event) {
    PageSurface::focusInEvent(event);
    m_parts->keyboardFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason ||
                             event->reason() == Qt::ShortcutFocusReason;
    viewport()->update();
}

void PDFView::focusOutEvent(QFocusEvent* event) {
    PageSurface::focusOutEvent(event);
    m_parts->keyboardFocus = false;
    // An editor of a field is a part of the view.
    const bool goesToEditor = viewport()->isAncestorOf(QApplication::focusWidget());
    if (!goesToEditor && event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        m_parts->leaveFocus();
    viewport()->update();
}

// Pointer

bool PDFView::isPanning() const {
    return m_parts->panPoint.has_value();
}

void PDFView::startPanning(QPointF viewPoint) {
    m_parts->column().scroller().stop();
    m_parts->touch.stop();
    m_parts->panPoint = viewPoint;
    viewport()->setCursor(Qt::ClosedHandCursor);
}

void PDFView::pan(QPointF viewPoint) {
    PageColumn& column = m_parts->column();
    column.scroller().scrollBy((*m_parts->panPoint - viewPoint) * column.devicePixelRatio());
    m_parts->panPoint = viewPoint;
}

void PDFView::stopPanning(QPointF viewPoint) {
    m_parts->panPoint.reset();
    viewport()->unsetCursor();
    updateCursor(viewPoint);
}

void PDFView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && event->buttons() == Qt::MiddleButton)
        startPanning(event->position());
    if (event->button() != Qt::LeftButton)
        return;
    if (isPanning())
        stopPanning(event->position());
    PageColumn& column = m_parts->column();
    column.scroller().stop();
    m_parts->keyboardFocus = false;
    m_parts->followedLink = false;
    closeRemark();
    m_parts->leaveFocus();
    if (m_parts->forms.press(event->position())) {
        clearSelection();
        return;
    }
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const auto link = shift ? std::nullopt : m_parts->links.linkAt(event->position());
    m_parts->pressedLink = link ? link->annotation : nullptr;
    m_parts->pressedRemark = link || shift ? std::nullopt : m_parts->remarks.at(event->position(), true);
    m_parts->pressPoint = event->position();
    m_parts->drag.press(event->position(), shift);
}

void PDFView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton)
        mousePressEvent(event);
    if (event->button() != Qt::LeftButton || m_parts->followedLink)
        return;
    closeRemark();
    if (!m_parts->forms.press(event->position())) // two quick clicks on a field are two clicks
        m_parts->drag.doubleClick(event->position());
}

void PDFView::mouseMoveEvent(QMouseEvent* event) {
    m_parts->pointer = event->position();
    if (isPanning()) {
        if (event->buttons().testFlag(Qt::MiddleButton))
            return pan(event->position());
        stopPanning(event->position()); // a menu or a dialog that came up has taken the release
    }
    if (event->buttons().testFlag(Qt::LeftButton) && m_parts->forms.isPressed())
        return;
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        m_parts->drag.release(); // a menu or a dialog that came up has taken the event
        // Links are read from the file when they are first asked for: not in the middle of scrolling.
        if (!m_parts->isMoving())
            updateCursor(event->position());
        return;
    }
    const double way = (event->position() - m_parts->pressPoint).manhattanLength();
    if ((m_parts->pressedLink || m_parts->pressedRemark) && way < QApplication::startDragDistance())
        return; // a hand that isn't quite still still clicks
    m_parts->pressedLink.reset();
    m_parts->pressedRemark.reset();
    m_parts->drag.moveTo(event->position());
}

void PDFView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::MiddleButton && isPanning())
        stopPanning(event->position());
    if (event->button() != Qt::LeftButton)
        return;
    m_parts->drag.release();
    m_parts->forms.release(event->position(), event->modifiers());
    if (const auto link = std::exchange(m_parts->pressedLink, nullptr)) {
        m_parts->followedLink = true;
        m_parts->follow(*link);
    }
    if (const auto remark = std::exchange(m_parts->pressedRemark, std::nullopt))
        m_parts->read(*remark, event->position());
    updateCursor(event->position());
}

void PDFView::updateCursor(QPointF viewPoint) {
    if (isPanning())
        return;
    if (const auto shape = m_parts->forms.cursor(viewPoint)) {
        viewport()->setCursor(*shape);
        return;
    }
    if (m_parts->links.linkAt(viewPoint) || m_parts->remarks.isOverNote(viewPoint)) {
        viewport()->setCursor(Qt::PointingHandCursor);
        return;
    }
    const std::shared_ptr<PDFPage> page = pageAt(viewPoint, false);
    const auto text = page ? m_parts->texts.text(page->content()) : nullptr;
    const bool overText = text && text->lineContaining(convertToPage(viewPoint, *page)) >= 0;
    viewport()->setCursor(overText ? Qt::IBeamCursor : Qt::ArrowCursor);
}

bool PDFView::showsRemark(const PDFAnnotation&) const {
    return true;
}

void PDFView::setReadsRemarks(bool reads) {
    m_parts->remarks.setEnabled(reads);
    if (!reads)
        closeRemark();
    viewport()->update();
}

void PDFView::closeRemark() {
    m_parts->remarkPanel->commit();
}

bool PDFView::hasLink(QPointF viewPoint) const {
    return m_parts->links.linkAt(viewPoint).has_value();
}

void PDFView::contextMenuEvent(QContextMenuEvent* event) {
    // In the middle of a drag it would get the release, and take it for a choice.
    if (QGuiApplication::mouseButtons().testFlag(Qt::LeftButton))
        return;
    showMenu(event->reason() == QContextMenuEvent::Keyboard ? menuPoint() : QPointF(event->pos()));
}

void PDFView::showMenu(QPointF viewPoint) {
    // The menu goes with the view when that is closed meanwhile, so no one here may wait for it.
    QMenu* const shown = menu(viewPoint).release();
    if (!shown)
        return;
    shown->setAttribute(Qt::WA_DeleteOnClose);
    shown->popup(viewport()->mapToGlobal(viewPoint.toPoint()));
}

QPointF PDFView::menuPoint() const {
    const QRectF seen(viewport()->rect());
    for (const PlacedPage& placed : m_parts->pages(false)) {
        if (!placed.page || m_parts->selection.rangesOn(*placed.page).empty())
            continue;
        const auto text = m_parts->texts.textNow(placed.page->content());
        if (!text)
            continue;
        for (const QRectF& line : m_parts->selection.rects(*placed.page, *text)) {
            if (const QRectF shown = convertFromPage(line, *placed.page) & seen; !shown.isEmpty())
                return shown.center();
        }
    }
    return seen.center();
}

std::unique_ptr<QMenu> PDFView::menu(QPointF) {
    auto shown = std::make_unique<QMenu>(this);
    shown->setObjectName(QStringLiteral("pdfViewMenu"));
    shown->setAccessibleName(tr("Document"));
    shown->addAction(action(PDFViewCommand::copy));
    shown->addAction(action(PDFViewCommand::selectAll));
    return shown;
}
