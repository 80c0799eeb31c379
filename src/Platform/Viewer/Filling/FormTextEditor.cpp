#include "FormTextEditor.h"

#include "FieldLineEdit.h"
#include "FormFieldValues.h"
#include "InlineFreeTextEditor.h"
#include "PDFAnnotation.h"
#include "PageSurface.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>

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

// How the page shows a field while no editor lies over it, in parts of the font's size.
static constexpr double capitals = 0.718;
static constexpr double descenders = 0.207;
static constexpr double lineHeight = 1.15;

/// A combo box whose value is one of its choices shows the label of that.
static QString shownText(const PDFFormField& field) {
    QString value = field.value().join(QString());
    for (const PDFFormField::Choice& choice : field.choices())
        if (choice.exportValue == value)
            return choice.label;
    return value;
}

FormTextEditor::FormTextEditor(PageSurface& view) : FormFieldEditor(view) {}

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
    made->setOffersChoices(field().kind() == PDFFormField::Kind::comboBox);
    if (field().kind() == PDFFormField::Kind::text) {
        if (field().isPassword())
            made->setEchoMode(QLineEdit::Password);
        if (const auto limit = field().maximumLength()) {
            made->setMaxLength(*limit);
            made->setCells(field().isComb() ? std::min(*limit, FormFieldValues::mostCells) : 0);
        }
    }
    made->setText(shownText(field()));
    made->selectAll();
    connect(made, &FieldLineEdit::choicesRequested, this, &FormTextEditor::choicesRequested);
    connect(made, &FieldLineEdit::textChanged, this, &FormTextEditor::fitText);
    connect(made, &FieldLineEdit::textChanged, this, &PlacedEditor::typed);
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
    setLineHeight(*made);
    made->document()->clearUndoRedoStacks();
    made->document()->setModified(false);
    made->selectAll();
    connect(made, &QTextEdit::textChanged, this, &FormTextEditor::fitText);
    connect(made, &QTextEdit::textChanged, this, &PlacedEditor::typed);
    return made;
}

void FormTextEditor::setLineHeight(InlineFreeTextEditor& editor) const {
    const QFont shown = font();
    const double size = shown.pointSizeF() * editor.logicalDpiY() / pointsPerInch;
    // What a line of the editor takes is more than the font says.
    QTextLayout probe(QStringLiteral("x"), shown, &editor);
    probe.beginLayout();
    QTextLine line = probe.createLine();
    line.setLeadingIncluded(true); // as a document does
    line.setLineWidth(size);       // which lays it out
    const double natural = std::ceil(line.height());
    probe.endLayout();
    QTextBlockFormat format;
    format.setLineHeight(100 * lineHeight * size / natural, QTextBlockFormat::ProportionalHeight);
    QTextCursor all(editor.document());
    all.select(QTextCursor::Document);
    all.mergeBlockFormat(format);
}

/// Where the field chooses the size of its text.
void FormTextEditor::fitText() {
    if (isOpen() && subject()->values().text.sizeSuitsBox)
        layOut();
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

void FormTextEditor::finishComposing() {
    if (lines())
        lines()->finishComposing();
}

void FormTextEditor::apply() {
    if (!canCommit())
        return;
    finishComposing();
    if (!isChanged())
        return;
    if (line())
        line()->setModified(false);
    else
        lines()->document()->setModified(false);
    Q_EMIT committed(field(), value());
}

bool FormTextEditor::isChanged() const {
    return line() ? line()->isModified() : lines()->document()->isModified();
}

QStringList FormTextEditor::value() const {
    if (lines())
        return {lines()->typedText()};
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
    const QFontMetricsF metrics(line()->font(), line());
    const double size = line()->font().pointSizeF() * line()->logicalDpiY() / pointsPerInch;
    const double lift = (metrics.ascent() - metrics.descent() - (capitals - descenders) * size) / 2;
    return lift > 0 && metrics.height() + 2 * lift <= frame().height() ? lift : 0;
}

void FormTextEditor::layOut() {
    const double inset = (border() + std::max(1.0, border())) * scale();
    const QFont fitting = font(lines() ? lines()->toPlainText() : line()->text());
    if (widget()->font() != fitting)
        widget()->setFont(fitting);
    if (lines()) {
        // Without the editor it is the capitals of the first line that reach up to the inset.
        const double size = fitting.pointSizeF() * lines()->logicalDpiY() / pointsPerInch;
        const double above = QFontMetricsF(fitting, lines()).ascent() - capitals * size;
        lines()->place(frame(), QPointF(inset, std::max(0.0, inset - above)));
        return;
    }
    line()->setPlacement(field().alignment() == PDFFormField::Alignment::center ? 0 : inset, lift());
    line()->setGeometry(frame().toAlignedRect());
}
