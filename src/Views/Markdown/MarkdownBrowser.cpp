#include "MarkdownBrowser.h"

#include "FormulaFitting.h"
#include "MarkdownAccessible.h"
#include "MarkdownSelection.h"
#include "PageLinks.h"
#include "WebLink.h"

#include <QAbstractTextDocumentLayout>
#include <QMimeData>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollArea>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>

#include <cmath>
#include <utility>

static constexpr int usualWidth = 320;
static constexpr int smallestWidth = 40;
static constexpr double wheelStep = 60; // of a formula, for a notch

MarkdownBrowser::MarkdownBrowser(int pageCount, QWidget* parent) : QTextBrowser(parent) {
    setObjectName(QStringLiteral("replyText"));
    MarkdownAccessible::install();
    setOpenLinks(false);
    setUndoRedoEnabled(false);
    setFrameShape(QFrame::NoFrame);
    setAcceptDrops(false);
    viewport()->setAutoFillBackground(false);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTextInteractionFlags(Qt::TextBrowserInteraction | Qt::TextSelectableByKeyboard);
    // So that the document is laid out when a width is set here, and not once more at every change of size.
    setLineWrapMode(QTextEdit::FixedPixelWidth);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(this, &QTextBrowser::anchorClicked, this, [this, pageCount](const QUrl& url) {
        if (const auto page = PageLinks::page(url); page && *page <= pageCount)
            Q_EMIT pageRequested(*page);
        else
            WebLink::confirmAndOpen(url, this);
    });
    connect(this, &QTextEdit::cursorPositionChanged, this, &MarkdownBrowser::followCursor);
    layOut(usualWidth);
}

MarkdownBrowser::~MarkdownBrowser() = default;

void MarkdownBrowser::display(MarkdownDocument::Result content, bool keepsSelection) {
    const int anchor = textCursor().anchor();
    const int position = textCursor().position();
    const QPointer<QTextDocument> before(document());
    QTextDocument* next = content.document.release();
    next->setParent(this);
    FormulaFitting::fit(*next, m_width);
    m_decorations = std::move(content.decorations);
    setDocument(next); // deletes the one that it began with
    delete before;
    m_heights.clear();
    m_isPlaced = false;
    if (const int last = next->characterCount() - 1; keepsSelection && anchor <= last && position <= last) {
        QTextCursor cursor(next);
        cursor.setPosition(anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        setTextCursor(cursor);
    }
    updateGeometry();
    viewport()->update();
}

void MarkdownBrowser::layOut(int width) {
    if (width == m_width)
        return;
    m_width = width;
    m_isPlaced = false;
    // A document wider than the viewport shows the scroll bar, which resizes the viewport.
    const QScopedValueRollback guard(m_isLayingOut, true);
    FormulaFitting::fit(*document(), width);
    setLineWrapColumnOrWidth(width);
}

int MarkdownBrowser::heightForWidth(int width) const {
    const int usedWidth = qMax(width, smallestWidth);
    if (!m_heights.contains(usedWidth)) {
        // Only a layout can tell the height, and the widget is most likely to get that width next.
        const_cast<MarkdownBrowser*>(this)->layOut(usedWidth);
        const QSizeF size = document()->size();
        const int scrollBar = size.width() > usedWidth ? horizontalScrollBar()->sizeHint().height() : 0;
        // The size leaves out what is below the last block.
        const double below = document()->lastBlock().blockFormat().bottomMargin();
        m_heights.insert(usedWidth, static_cast<int>(std::ceil(size.height() + below)) + scrollBar);
    }
    return m_heights.value(usedWidth);
}

QSize MarkdownBrowser::sizeHint() const {
    return {usualWidth, fontMetrics().lineSpacing()};
}

QSize MarkdownBrowser::minimumSizeHint() const {
    return {smallestWidth, 0};
}

QMimeData* MarkdownBrowser::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(MarkdownSelection::plainText(textCursor()));
    return copied;
}

void MarkdownBrowser::paintEvent(QPaintEvent* event) {
    // Another width may have been asked for and not been given.
    layOut(qMax(viewport()->width(), smallestWidth));
    {
        if (!m_isPlaced)
            m_decorations.place(*document());
        m_isPlaced = true;
        QPainter painter(viewport());
        const QPoint origin(horizontalScrollBar()->value(), verticalScrollBar()->value());
        painter.translate(-origin);
        m_decorations.paint(painter, event->rect().translated(origin), palette());
    }
    QTextBrowser::paintEvent(event);
}

void MarkdownBrowser::resizeEvent(QResizeEvent* event) {
    if (!m_isLayingOut)
        layOut(qMax(viewport()->width(), smallestWidth));
    QTextBrowser::resizeEvent(event);
}

bool MarkdownBrowser::scrollFormula(const QWheelEvent& event) {
    const QPoint turned = event.angleDelta();
    const bool isToTheSide = std::abs(turned.x()) > std::abs(turned.y());
    if (!isToTheSide && !event.modifiers().testFlag(Qt::ShiftModifier))
        return false;
    const QPointF place =
        event.position() + QPointF(horizontalScrollBar()->value(), verticalScrollBar()->value()); // of the document
    const double notches = (isToTheSide ? turned.x() : turned.y()) / double(QWheelEvent::DefaultDeltasPerStep);
    if (!FormulaFitting::scroll(*document(), document()->documentLayout()->imageAt(place), -notches * wheelStep))
        return false;
    viewport()->update();
    return true;
}

void MarkdownBrowser::wheelEvent(QWheelEvent* event) {
    if (scrollFormula(*event))
        event->accept();
    else if (std::abs(event->angleDelta().x()) > std::abs(event->angleDelta().y()))
        QTextBrowser::wheelEvent(event);
    else
        event->ignore();
}

void MarkdownBrowser::followCursor() {
    if (!hasFocus())
        return;
    for (QWidget* ancestor = parentWidget(); ancestor; ancestor = ancestor->parentWidget()) {
        auto* area = qobject_cast<QScrollArea*>(ancestor);
        if (!area || !area->widget())
            continue;
        const QPoint place = viewport()->mapTo(area->widget(), cursorRect().center());
        area->ensureVisible(place.x(), place.y(), 0, cursorRect().height());
        return;
    }
}
