#include "RemarkPanel.h"

#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PageSurface.h"
#include "RemarkText.h"

#include <QCoreApplication>
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
    PlacedEditor::close();
}

bool RemarkPanel::isSubjectThere() const {
    return m_annotation && m_annotation->page() == page() && RemarkThreads::isRemark(*m_annotation);
}

void RemarkPanel::layOut() {
    QTextEdit& edit = *text();
    if (std::vector<Remark> now = RemarkThreads(*page()).thread(m_annotation); now != m_shown) {
        m_shown = std::move(now);
        RemarkText::write(m_shown, *edit.document());
        edit.moveCursor(QTextCursor::Start);
        edit.setAccessibleDescription(RemarkText::description(m_shown.front()));
    }
    const QRect view = viewer().viewport()->rect();
    const int frame = 2 * edit.frameWidth();
    const int width = std::min(widestPanel, view.width());
    edit.document()->setTextWidth(width - frame);
    const int wanted = int(std::ceil(edit.document()->size().height())) + frame;
    const int height = std::min({wanted, highestPanel, view.height()});
    const QRect anchor = viewer().convertFromPage(m_anchor, *page()).toAlignedRect();
    QRect place(anchor.right() + 1 + gap, anchor.top(), width, height);
    if (place.right() > view.right() && anchor.left() - gap - width >= view.left()) {
        place.moveRight(anchor.left() - gap - 1);
    } else if (place.right() > view.right()) { // no room on either side
        const bool fitsBelow = anchor.bottom() + gap + height <= view.bottom();
        place.moveTo(anchor.left(), fitsBelow ? anchor.bottom() + 1 + gap : anchor.top() - gap - height);
    }
    if (anchor.intersects(view)) { // out of sight it goes with its annotation
        place.moveLeft(std::clamp(place.left(), view.left(), view.right() + 1 - width));
        place.moveTop(std::clamp(place.top(), view.top(), view.bottom() + 1 - height));
    }
    edit.setGeometry(place);
}
