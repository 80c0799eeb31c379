#include "RemarkPanel.h"

#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PageSurface.h"
#include "RemarkText.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>
#include <cmath>

// Device-independent pixels.
static constexpr int widestPanel = 300;
static constexpr int highestPanel = 280;
static constexpr int gap = 8;
static constexpr double innerMargin = 8;

RemarkPanel::RemarkPanel(PageSurface& view) : PlacedEditor(view) {}

RemarkPanel::~RemarkPanel() = default;

QTextEdit* RemarkPanel::text() const {
    return static_cast<QTextEdit*>(widget());
}

void RemarkPanel::open(const std::shared_ptr<PDFAnnotation>& annotation, const QRectF& anchor) {
    const std::shared_ptr<PDFPage> page = annotation->page();
    if (!page)
        return;
    commitAllEditors();
    m_annotation = annotation;
    m_anchor = viewer().convertToPage(anchor, *page);
    auto* const made = new QTextEdit(viewer().viewport());
    made->setReadOnly(true);
    made->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    made->setTabChangesFocus(true);
    made->setFrameShape(QFrame::StyledPanel);
    made->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    made->document()->setDocumentMargin(innerMargin);
    made->setCursor(Qt::ArrowCursor);
    PlacedEditor::open(made, page, QStringLiteral("remarkPanel"), QCoreApplication::translate("PDFView", "Comment"));
    show();
}

void RemarkPanel::close() {
    m_annotation.reset();
    m_shown.clear();
    m_measured.reset();
    PlacedEditor::close();
}

bool RemarkPanel::isSubjectThere() const {
    return m_annotation && m_annotation->page() == page() && RemarkThreads::isRemark(*m_annotation);
}

int RemarkPanel::heightFor(int viewWidth) {
    const int frame = 2 * text()->frameWidth();
    const int width = std::min(widestPanel, viewWidth) - frame;
    if (!m_measured || m_measured->width() != width) {
        // The text's own layout follows the size that the panel still has.
        const std::unique_ptr<QTextDocument> copy(text()->document()->clone());
        copy->setTextWidth(width);
        m_measured = QSize(width, int(std::ceil(copy->size().height())));
    }
    return std::min(m_measured->height() + frame, highestPanel);
}

/// The window has shortcuts of its own for these.
bool RemarkPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && watched == widget()) {
        auto* const key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll)) {
            key->accept();
            return true;
        }
    }
    return PlacedEditor::eventFilter(watched, event);
}

void RemarkPanel::layOut() {
    QTextEdit& edit = *text();
    if (std::vector<Remark> now = RemarkThreads(*page()).thread(m_annotation); now != m_shown) {
        m_shown = std::move(now);
        m_measured.reset();
        RemarkText::write(m_shown, *edit.document());
        edit.moveCursor(QTextCursor::Start);
        edit.setAccessibleDescription(RemarkText::description(m_shown.front()));
    }
    const QRect view = viewer().viewport()->rect();
    const QSize size(std::min(widestPanel, view.width()), std::min(heightFor(view.width()), view.height()));
    const QRect anchor = viewer().convertFromPage(m_anchor, *page()).toAlignedRect();
    const bool fitsBelow = anchor.bottom() + gap + size.height() <= view.bottom();
    const bool fitsOnTheRight = anchor.right() + gap + size.width() <= view.right();
    const bool fitsOnTheLeft = anchor.left() - gap - size.width() >= view.left();
    // What goes on behind marked words stays readable.
    const bool isWide = anchor.width() > 2 * anchor.height();
    QRect place(anchor.right() + 1 + gap, anchor.top(), size.width(), size.height());
    if ((isWide && fitsBelow) || (!fitsOnTheRight && !fitsOnTheLeft))
        place.moveTo(anchor.left(), fitsBelow ? anchor.bottom() + 1 + gap : anchor.top() - gap - size.height());
    else if (!fitsOnTheRight)
        place.moveRight(anchor.left() - gap - 1);
    if (anchor.intersects(view)) { // out of sight it goes with its annotation
        place.moveLeft(std::clamp(place.left(), view.left(), view.right() + 1 - size.width()));
        place.moveTop(std::clamp(place.top(), view.top(), view.bottom() + 1 - size.height()));
    }
    edit.setGeometry(place);
}
