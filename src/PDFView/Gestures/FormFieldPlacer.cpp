#include "FormFieldPlacer.h"

#include "PDFAnnotation.h"
#include "Palette.h"

static int nextFormNumber = 1; // main thread only

std::shared_ptr<PDFAnnotation> FormFieldPlacer::makeAnnotation(FormFieldMode mode, const QRectF& bounds) {
    auto field = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::widget);
    field->setBorder(PDFBorder{1.0});
    field->setColor(Palette::systemBlue);
    QColor background = Palette::systemBlue;
    background.setAlphaF(0.08F);
    field->setBackgroundColor(background);
    field->setFieldName(QStringLiteral("%1_%2").arg(info(mode).rawValue).arg(nextFormNumber++));
    if (mode == FormFieldMode::text) {
        field->setWidgetFieldType(PDFWidgetFieldType::text);
    } else {
        field->setWidgetFieldType(PDFWidgetFieldType::button);
        field->setWidgetControlType(PDFWidgetControlType::checkBox);
        field->setButtonWidgetState(PDFWidgetCellState::off);
    }
    return field;
}
