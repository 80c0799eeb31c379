#include "FormFieldEditor.h"

#include "FieldDrawing.h"
#include "FormFieldValues.h"
#include "InlineFreeTextEditor.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PageSurface.h"

#include <QKeyEvent>

#include <algorithm>

static constexpr double usualSize = 12; // points

FormFieldEditor::FormFieldEditor(PageSurface& view) : PlacedEditor(view) {}

FormFieldEditor::~FormFieldEditor() = default;

std::shared_ptr<PDFAnnotation> FormFieldEditor::subject() const {
    return m_field ? m_field->widget() : nullptr;
}

void FormFieldEditor::start(const PDFFormField& field, std::optional<QPointF> viewPoint) {
    commitAllEditors();
    const std::shared_ptr<PDFPage> fieldPage = field.widget()->page();
    if (!fieldPage)
        return;
    m_field = field;
    QWidget* const made = makeWidget();
    made->setAccessibleDescription(field.isRequired() ? tr("Required") : QString());
    open(made, fieldPage, QStringLiteral("formFieldEditor"), field.userName());
    show();
    if (viewPoint && isOpen())
        click(made->mapFrom(viewer().viewport(), *viewPoint));
}

void FormFieldEditor::close() {
    PlacedEditor::close();
    m_field.reset();
}

void FormFieldEditor::commit() {
    if (!canCommit())
        return;
    const PDFFormField edited = field();
    finishComposing();
    const bool changed = isChanged();
    const QStringList text = value();
    close();
    if (changed)
        Q_EMIT committed(edited, text);
}

void FormFieldEditor::addOpenTo(PDFDraft& draft) const {
    if (isChanged())
        field().addTo(draft, value());
}

bool FormFieldEditor::isSubjectThere() const {
    return m_field && m_field->widget()->page() == page() && m_field->widget()->shouldDisplay();
}

bool FormFieldEditor::pressKey(QKeyEvent& key) {
    const bool forward = key.key() == Qt::Key_Tab && !key.modifiers().testFlag(Qt::ShiftModifier);
    const bool isTab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
    if (!isTab || key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return PlacedEditor::pressKey(key);
    key.accept();
    commit();
    Q_EMIT leftByTab(forward);
    return true;
}

// Looks

QRectF FormFieldEditor::frame() const {
    const PDFAnnotation& widget = *field().widget();
    const QRectF rect = viewer().convertFromPage(widget.bounds(), *widget.page());
    if ((widget.page()->rotation() - widget.values().field.turn) % 180 == 0)
        return rect;
    QRectF upright(QPointF(), rect.size().transposed());
    upright.moveCenter(rect.center());
    // What is over the middle of a field at the edge of the page may be out of sight.
    if (rect.left() >= 0)
        upright.moveLeft(std::max(0.0, upright.left()));
    return upright;
}

double FormFieldEditor::border() const {
    const std::optional<PDFBorder> given = field().widget()->border();
    return given ? given->lineWidth : field().widget()->values().defaultLineWidth;
}

double FormFieldEditor::scale() const {
    return viewer().scaleFactor() * field().widget()->page()->userUnit();
}

QFont FormFieldEditor::font(const QString& text) const {
    const PDFAnnotation& widget = *field().widget();
    QFont onPage = widget.font().value_or(QFont(QStringLiteral("Helvetica"), int(usualSize)));
    if (onPage.pointSizeF() <= 0)
        onPage.setPointSizeF(usualSize);
    if (widget.values().text.sizeSuitsBox) {
        PDFAnnotationValues shown = widget.values();
        shown.field.string = text;
        shown.field.chosen = QStringList{text};
        if (const auto drawing = FieldDrawing::of(shown); drawing && drawing->text)
            onPage.setPointSizeF(drawing->text->layout.size);
    }
    return InlineFreeTextEditor::screenFont(onPage, scale(), viewer());
}

QColor FormFieldEditor::textColor() const {
    return field().widget()->fontColor().value_or(QColor(Qt::black));
}

QColor FormFieldEditor::paper() const {
    const QColor own = field().widget()->backgroundColor().value_or(QColor(Qt::transparent));
    const auto onWhite = [&own](double part) { return float(part * own.alphaF() + 1 - own.alphaF()); };
    return QColor::fromRgbF(onWhite(own.redF()), onWhite(own.greenF()), onWhite(own.blueF()));
}
