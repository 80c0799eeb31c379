#include "FormTextEditor.h"

#include "FieldLineEdit.h"
#include "InlineFreeTextEditor.h"
#include "PDFAnnotation.h"
#include "PDFView.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QTextDocument>
#include <QTextOption>

#include <algorithm>

static Qt::Alignment alignmentOf(const PDFFormField& field) {
    switch (field.alignment()) {
    case PDFFormField::Alignment::center:
        return Qt::AlignHCenter;
    case PDFFormField::Alignment::right:
        return Qt::AlignRight;
    default:
        return Qt::AlignLeft;
    }
}

/// A combo box whose value is one of its choices shows the label of that.
static QString shownText(const PDFFormField& field) {
    const QString value = field.value().join(QString());
    for (const PDFFormField::Choice& choice : field.choices())
        if (choice.exportValue == value)
            return choice.label;
    return value;
}

FormTextEditor::FormTextEditor(PDFView& view) : FormFieldEditor(view) {}

FormTextEditor::~FormTextEditor() = default;

bool FormTextEditor::hasLines() const {
    return field().kind() == PDFFormField::Kind::text && field().isMultiline() && !field().isPassword();
}

FieldLineEdit* FormTextEditor::line() const {
    return qobject_cast<FieldLineEdit*>(widget());
}

InlineFreeTextEditor* FormTextEditor::lines() const {
    return qobject_cast<InlineFreeTextEditor*>(widget());
}

QWidget* FormTextEditor::makeWidget() {
    return hasLines() ? makeLines() : makeLine();
}

QWidget* FormTextEditor::makeLine() {
    auto* const made = new FieldLineEdit(viewer().viewport());
    made->setColors(textColor(), paper());
    made->setAlignment(alignmentOf(field()) | Qt::AlignVCenter);
    made->setFitsWidth(field().doesNotScroll());
    if (field().kind() == PDFFormField::Kind::text) {
        if (field().isPassword())
            made->setEchoMode(QLineEdit::Password);
        if (const auto limit = field().maximumLength()) {
            made->setMaxLength(*limit);
            made->setCells(field().isComb() ? *limit : 0);
        }
    }
    made->setText(shownText(field()));
    made->selectAll();
    connect(made, &FieldLineEdit::downPressed, this, &FormTextEditor::choicesRequested);
    return made;
}

QWidget* FormTextEditor::makeLines() {
    auto* const made = new InlineFreeTextEditor(viewer().viewport());
    made->borderColor = Qt::transparent;
    made->maximumLength = field().maximumLength();
    made->staysInPlace = field().doesNotScroll();
    made->setColors(textColor(), paper());
    QTextOption option = made->document()->defaultTextOption();
    option.setAlignment(alignmentOf(field()));
    made->document()->setDefaultTextOption(option);
    made->setPlainText(shownText(field()));
    made->document()->clearUndoRedoStacks();
    made->document()->setModified(false);
    made->selectAll();
    return made;
}

void FormTextEditor::click(QPointF point) {
    if (line()) {
        line()->deselect();
        line()->setCursorAt(point);
    } else {
        lines()->setTextCursor(lines()->cursorForPosition(lines()->viewport()->mapFromParent(point.toPoint())));
    }
}

void FormTextEditor::replaceText(const QString& text) {
    if (!line())
        return;
    line()->selectAll();
    line()->insert(text);
}

bool FormTextEditor::isChanged() const {
    return line() ? line()->isModified() : lines()->document()->isModified();
}

QStringList FormTextEditor::value() const {
    if (lines())
        return {lines()->finishedText()};
    const QString text = line()->text();
    for (const PDFFormField::Choice& choice : field().choices())
        if (choice.label == text)
            return {choice.exportValue};
    return {text};
}

bool FormTextEditor::breaksLine(const QKeyEvent& key) const {
    return hasLines() && !key.modifiers().testFlag(Qt::ControlModifier);
}

/// Without the editor the capitals and descenders of Helvetica stand in the middle, whatever the font; here it is the
/// line.
double FormTextEditor::lift() const {
    constexpr double capitals = 0.718; // in parts of the font's size
    constexpr double descenders = 0.207;
    const QFontMetricsF metrics(line()->font(), line());
    const double size = line()->font().pointSizeF() * line()->logicalDpiY() / 72;
    const double lift = (metrics.ascent() - metrics.descent() - (capitals - descenders) * size) / 2;
    return lift > 0 && metrics.height() + 2 * lift <= frame().height() ? lift : 0;
}

void FormTextEditor::layOut() {
    const double inset = (border() + std::max(1.0, border())) * scale();
    widget()->setFont(font());
    if (lines()) {
        lines()->place(frame(), QPointF(inset, inset));
        return;
    }
    line()->setPlacement(field().alignment() == PDFFormField::Alignment::center ? 0 : inset, lift());
    line()->setGeometry(frame().toAlignedRect());
}
