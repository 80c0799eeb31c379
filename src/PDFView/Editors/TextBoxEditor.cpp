#include "TextBoxEditor.h"

#include "AnnotatingPDFView.h"
#include "AnnotationUndo.h"
#include "FreeTextAnnotation.h"
#include "InlineFreeTextEditor.h"
#include "PDFDraft.h"
#include "PDFPage.h"
#include "Palette.h"
#include "ToolState.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

// Device-independent pixels.
static constexpr double boxWidth = 220;
static constexpr QPointF boxTextInset(6, 4);
static constexpr int handleSize = 7;
static constexpr double handleBorder = 1.5;
static constexpr double handleRadius = 1.5;

namespace {

/// Part of the look of the box; the pointer passes through it.
class Handle : public QWidget {
public:
    explicit Handle(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setObjectName(QStringLiteral("textBoxHandle"));
        resize(handleSize, handleSize);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Palette::systemBlue, handleBorder));
        painter.setBrush(Qt::white);
        constexpr double half = handleBorder / 2;
        painter.drawRoundedRect(QRectF(rect()).adjusted(half, half, -half, -half), handleRadius, handleRadius);
    }
};

} // namespace

TextBoxEditor::TextBoxEditor(AnnotatingPDFView& view) : AnnotationEditor(view) {}

TextBoxEditor::~TextBoxEditor() {
    deleteHandles();
}

void TextBoxEditor::start(QPointF viewPoint, const std::shared_ptr<PDFPage>& page) {
    commitAllEditors();
    const auto state = view().toolState();
    if (!state || !page)
        return;
    m_font = platformFont(state->fontChoice(), state->fontSize());
    const QFont font = InlineFreeTextEditor::screenFont(m_font, 1, view());
    m_height = std::ceil(InlineFreeTextEditor::defaultLineHeight(font, view())) + 2 * boxTextInset.y();
    m_corner = view().convertToPage(QPointF(viewPoint.toPoint()), *page);

    InlineFreeTextEditor& box = open(page, QStringLiteral("textBoxEditor"), QStringLiteral("Text box"));
    box.setFont(font);
    box.setColors(state->color(), Qt::transparent);
    connect(&box, &QTextEdit::textChanged, this, &TextBoxEditor::resize);
    // The text gets the colour of the moment of the commit.
    connect(state.get(), &ToolState::colorChanged, &box,
            [&box, state = state.get()] { box.setColors(state->color(), Qt::transparent); });
    for (int i = 0; i < 8; ++i)
        m_handles.emplace_back(new Handle(view().viewport()));
    show();
}

void TextBoxEditor::layOut() {
    const QPoint corner = view().convertFromPage(m_corner, *page()).toPoint();
    editor()->place(QRectF(corner, QSizeF(boxWidth, m_height)), boxTextInset);
    layOutHandles();
}

/// Around the frame, centred on its corners and on the middles of its sides.
void TextBoxEditor::layOutHandles() {
    const QRectF frame(editor()->geometry());
    auto handle = m_handles.begin();
    for (const double y : {frame.top(), frame.center().y(), frame.bottom()}) {
        for (const double x : {frame.left(), frame.center().x(), frame.right()}) {
            if (QPointF(x, y) == frame.center())
                continue;
            (*handle)->move(QPointF(x - handleSize / 2.0, y - handleSize / 2.0).toPoint());
            (*handle)->show();
            (*handle)->raise();
            ++handle;
        }
    }
}

void TextBoxEditor::resize() {
    const double line = InlineFreeTextEditor::defaultLineHeight(editor()->font(), *editor());
    const double height = std::ceil(std::max(line, editor()->usedHeight())) + 2 * boxTextInset.y();
    if (std::abs(height - m_height) <= 0.5)
        return;
    m_height = height;
    layOut();
}

void TextBoxEditor::close() {
    AnnotationEditor::close();
    deleteHandles();
}

void TextBoxEditor::deleteHandles() {
    for (const QPointer<QWidget>& handle : m_handles)
        delete handle;
    m_handles.clear();
}

std::shared_ptr<FreeTextAnnotation> TextBoxEditor::annotation(const QString& text) const {
    const QTransform toSeen = page()->displayTransform(view().displayBox());
    QRectF seen = toSeen.mapRect(view().convertToPage(QRectF(editor()->geometry()), *page()));
    // Zoomed in, the box takes up less of the page than its words do, which aren't zoomed.
    const QSizeF needed = FreeTextAnnotation::boxFor(text, m_font, seen.width());
    seen.setHeight(std::max(seen.height(), needed.height()));
    if (needed.width() > seen.width() + 1)
        seen.setWidth(needed.width()); // so far in that not even one letter has room beside another
    auto made = std::make_shared<FreeTextAnnotation>(toSeen.inverted().mapRect(seen));
    made->setContents(text);
    made->setFont(m_font);
    if (const auto state = view().toolState())
        made->setFontColor(state->color());
    made->setColor(QColor(Qt::transparent));
    return made;
}

void TextBoxEditor::addOpenTo(PDFDraft& draft) const {
    const QString text = editor()->typedText().trimmed();
    if (!text.isEmpty())
        draft.changes.push_back({page(), nullptr, annotation(text)});
}

void TextBoxEditor::commit() {
    if (!canCommit())
        return;
    const QString text = editor()->finishedText().trimmed();
    const std::shared_ptr<FreeTextAnnotation> made = text.isEmpty() ? nullptr : annotation(text);
    const std::shared_ptr<PDFPage> target = page();
    close();
    if (!made)
        return;
    target->addAnnotation(made);
    AnnotationUndo::registerAdding(view().docUndoManager().get(), target, made);
}
