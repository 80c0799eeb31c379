#include "FieldDrawing.h"

#include "FieldFrame.h"
#include "FieldText.h"
#include "FormFieldValues.h"

#include <QFontMetricsF>

#include <algorithm>

namespace {

using Values = PDFAnnotationValues;

// Bits of the Ff key (ISO 32000-1, tables 228 and 230).
constexpr int multilineFlag = 1 << 12;
constexpr int passwordFlag = 1 << 13;
constexpr int comboFlag = 1 << 17;
constexpr int combFlag = 1 << 24;

QString labelOf(const Values& values, const QString& exportValue) {
    if (values.field.inFile && values.field.inFile->choices)
        for (const PDFFormField::Choice& choice : *values.field.inFile->choices)
            if (choice.exportValue == exportValue)
                return choice.label;
    return exportValue;
}

FieldFrame frameOf(const Values& values) {
    FieldFrame frame;
    frame.box = values.field.turn % 180 != 0 ? values.bounds.size().transposed() : values.bounds.size();
    frame.background = values.interiorColor;
    frame.edge = values.color;
    frame.border = values.border.value_or(PDFBorder{values.defaultLineWidth});
    return frame;
}

void addRows(FieldText& text, const Values& values) {
    text.kind = FieldText::Kind::rows;
    if (!values.field.inFile || !values.field.inFile->choices)
        return;
    const std::vector<PDFFormField::Choice>& choices = *values.field.inFile->choices;
    for (std::size_t i = std::size_t(values.field.inFile->topIndex); i < choices.size(); ++i) {
        if (values.field.chosen.contains(choices[i].exportValue))
            text.chosen.push_back(text.rows.size());
        text.rows += choices[i].label;
    }
}

FieldText textOf(const Values& values, const FieldFrame& frame) {
    FieldText text;
    text.box = frame.box;
    text.border = frame.thickness();
    const QFont font = values.text.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    text.size = values.text.sizeSuitsBox ? 0 : font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    text.alignment = values.field.inFile ? int(values.field.inFile->alignment) : 0;
    text.text = values.field.string;
    if (values.field.type == PDFWidgetFieldType::choice) {
        if (values.field.inFile && !(values.field.flags & comboFlag))
            addRows(text, values);
        else
            text.text = labelOf(values, values.field.chosen.value(0, values.field.string));
        return text;
    }
    if (values.field.flags & multilineFlag)
        text.kind = FieldText::Kind::wrapped;
    else if (values.field.flags & passwordFlag)
        text.text = FieldDrawing::dots(text.text.size());
    else if ((values.field.flags & combFlag) && frame.cells > 0)
        text.kind = FieldText::Kind::comb;
    text.cells = frame.cells;
    return text;
}

void addText(AnnotationDrawing& drawing, const FieldText& text, const Values& values) {
    AnnotationDrawing::SetText set;
    set.font = values.text.font.value_or(QFont(QStringLiteral("Helvetica"), 12));
    set.color = values.text.color.value_or(QColor(Qt::black));
    set.clip = text.clip();
    QFont measured = set.font;
    constexpr int unitsPerSize = 60; // Qt forgets the widths of the letters of larger fonts at once
    measured.setPixelSize(unitsPerSize);
    measured.setHintingPreference(QFont::PreferNoHinting);
    const QFontMetricsF metrics(measured);
    set.layout =
        text.layout([&metrics](const QString& part) { return metrics.horizontalAdvance(part) / unitsPerSize; });
    for (const QRectF& highlight : set.layout.highlights) {
        AnnotationDrawing::Part part;
        part.path.addRect(highlight.intersected(set.clip));
        part.fill = FieldFrame::highlight();
        drawing.parts.push_back(part);
    }
    drawing.text = std::move(set);
}

void addButton(AnnotationDrawing& drawing, FieldFrame frame, const Values& values) {
    const bool isRadio = values.field.control == PDFWidgetControlType::radioButton;
    QChar mark = isRadio ? QLatin1Char('l') : QLatin1Char('4');
    if (values.field.inFile && !values.field.inFile->mark.isEmpty())
        mark = values.field.inFile->mark.at(0);
    frame.isRound = isRadio && mark == QLatin1Char('l');
    frame.addTo(drawing);
    if (values.field.state == PDFWidgetCellState::on)
        addFieldMark(drawing, mark, QRectF(QPointF(), frame.box), values.text.color.value_or(QColor(Qt::black)));
}

} // namespace

QString FieldDrawing::dots(qsizetype count) {
    constexpr qsizetype most = 1000;
    return QString(std::min(count, most), QChar(0x2022));
}

QTransform FieldDrawing::placement(const QRectF& bounds, int turn) {
    const QTransform moved = QTransform::fromTranslate(bounds.left(), bounds.top());
    switch (turn) {
    case 90:
        return QTransform(0, 1, -1, 0, bounds.width(), 0) * moved;
    case 180:
        return QTransform(-1, 0, 0, -1, bounds.width(), bounds.height()) * moved;
    case 270:
        return QTransform(0, -1, 1, 0, 0, bounds.height()) * moved;
    default:
        return moved;
    }
}

std::optional<AnnotationDrawing> FieldDrawing::of(const Values& values) {
    const bool isButton = values.field.type == PDFWidgetFieldType::button;
    const bool hasText =
        values.field.type == PDFWidgetFieldType::text || values.field.type == PDFWidgetFieldType::choice;
    if ((isButton && values.field.control == PDFWidgetControlType::pushButton) || (!isButton && !hasText))
        return std::nullopt;
    AnnotationDrawing drawing;
    FieldFrame frame = frameOf(values);
    if (isButton) {
        addButton(drawing, frame, values);
    } else {
        const bool isComb = values.field.type == PDFWidgetFieldType::text && values.field.inFile &&
                            (values.field.flags & combFlag) && !(values.field.flags & (multilineFlag | passwordFlag));
        frame.cells = isComb ? std::min(values.field.inFile->maximumLength.value_or(0), FormFieldValues::mostCells) : 0;
        frame.addTo(drawing);
        addText(drawing, textOf(values, frame), values);
    }
    const QTransform toPage = placement(values.bounds, values.field.turn);
    for (AnnotationDrawing::Part& part : drawing.parts)
        part.path = toPage.map(part.path);
    if (drawing.text)
        drawing.text->toPage = toPage;
    return drawing;
}
