// What a field is; PDFFormFieldValue.cpp has what becomes of its value.

#include "PDFFormField.h"

#include "FormFieldReader.h"
#include "FormFieldValues.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PDFSource.h"

#include <algorithm>

namespace {

// Bits of the Ff key (ISO 32000-1, tables 221, 226, 228 and 230).
constexpr int readOnlyFlag = 1 << 0;
constexpr int requiredFlag = 1 << 1;
constexpr int multilineFlag = 1 << 12;
constexpr int passwordFlag = 1 << 13;
constexpr int fileSelectFlag = 1 << 20;
constexpr int doNotScrollFlag = 1 << 23;
constexpr int combFlag = 1 << 24;
constexpr int noToggleToOffFlag = 1 << 14;
constexpr int comboFlag = 1 << 17;
constexpr int editFlag = 1 << 18;
constexpr int multiSelectFlag = 1 << 21;

bool has(const PDFAnnotation& widget, int flag) {
    return (widget.values().field.flags & flag) != 0;
}

/// What a widget that no file knows says of its field.
const FormFieldValues& formOf(const PDFAnnotation& widget) {
    static const FormFieldValues none = [] {
        FormFieldValues values;
        values.onState = QStringLiteral("Yes");
        return values;
    }();
    return widget.values().field.inFile ? *widget.values().field.inFile : none;
}

struct Placed {
    std::shared_ptr<PDFAnnotation> widget;
    QRectF shown; ///< on the page as shown, y down
};

/// Rows from the top, each from the left; with `transposed`, columns from the left, each from the top. What starts
/// above the middle of a row's first one belongs to that row.
void sortInRows(std::vector<Placed>& widgets, bool transposed) {
    const auto across = [transposed](const Placed& each) { return transposed ? each.shown.top() : each.shown.left(); };
    const auto start = [transposed](const Placed& each) { return transposed ? each.shown.left() : each.shown.top(); };
    const auto middle = [transposed](const Placed& each) {
        return transposed ? each.shown.center().x() : each.shown.center().y();
    };
    std::stable_sort(widgets.begin(), widgets.end(),
                     [&](const Placed& a, const Placed& b) { return start(a) < start(b); });
    for (auto row = widgets.begin(); row != widgets.end();) {
        const double limit = middle(*row);
        const auto next = std::find_if(row, widgets.end(), [&](const Placed& each) { return start(each) > limit; });
        std::stable_sort(row, next, [&](const Placed& a, const Placed& b) { return across(a) < across(b); });
        row = std::max(next, row + 1);
    }
}

} // namespace

PDFFormField::PDFFormField(std::shared_ptr<PDFAnnotation> widget) : m_widget(std::move(widget)) {}

std::optional<PDFFormField> PDFFormField::of(const std::shared_ptr<PDFAnnotation>& widget) {
    if (!widget || widget->type() != PDFAnnotationSubtype::widget || !widget->page() ||
        widget->widgetFieldType() == PDFWidgetFieldType::none)
        return std::nullopt;
    return PDFFormField(widget);
}

std::vector<std::shared_ptr<PDFAnnotation>> PDFFormField::fillableWidgets(const PDFPage& page) {
    const QTransform shown = page.displayTransform(PDFDisplayBox::cropBox);
    std::vector<Placed> placed;
    for (const auto& annotation : page.annotations())
        if (const auto field = of(annotation); field && field->isFillable())
            placed.push_back({annotation, shown.mapRect(annotation->bounds())});
    // The structure of a tagged file nearly always has the order of the list; so have the orders that ask for it.
    const char order = FormFieldReader::tabOrder(page.content().source->engine(), page.content().pageNumber);
    if (order == 'C')
        sortInRows(placed, true);
    else if (order != 'S' && order != 'A' && order != 'W')
        sortInRows(placed, false);
    std::vector<std::shared_ptr<PDFAnnotation>> widgets;
    for (Placed& each : placed)
        widgets.push_back(std::move(each.widget));
    return widgets;
}

PDFFormField::Kind PDFFormField::kind() const {
    switch (m_widget->widgetFieldType()) {
    case PDFWidgetFieldType::button:
        switch (m_widget->widgetControlType()) {
        case PDFWidgetControlType::pushButton:
            return Kind::pushButton;
        case PDFWidgetControlType::radioButton:
            return Kind::radioButtons;
        case PDFWidgetControlType::checkBox:
            break;
        }
        return Kind::checkBox;
    case PDFWidgetFieldType::choice:
        return has(*m_widget, comboFlag) ? Kind::comboBox : Kind::listBox;
    case PDFWidgetFieldType::signature:
        return Kind::signature;
    case PDFWidgetFieldType::text:
    case PDFWidgetFieldType::none:
        break;
    }
    return Kind::text;
}

QString PDFFormField::name() const {
    return m_widget->fieldName();
}

QString PDFFormField::userName() const {
    const QString& given = formOf(*m_widget).userName;
    return given.isEmpty() ? name() : given;
}

bool PDFFormField::isReadOnly() const {
    return has(*m_widget, readOnlyFlag);
}

bool PDFFormField::isRequired() const {
    return has(*m_widget, requiredFlag);
}

bool PDFFormField::isFillable() const {
    const Kind what = kind();
    return what != Kind::pushButton && what != Kind::signature && !isReadOnly() && m_widget->page() &&
           m_widget->shouldDisplay() && !m_widget->bounds().isEmpty();
}

bool PDFFormField::isMultiline() const {
    return kind() == Kind::text && has(*m_widget, multilineFlag);
}

bool PDFFormField::isPassword() const {
    return kind() == Kind::text && has(*m_widget, passwordFlag);
}

std::optional<int> PDFFormField::maximumLength() const {
    return kind() == Kind::text ? formOf(*m_widget).maximumLength : std::nullopt;
}

bool PDFFormField::isComb() const {
    return kind() == Kind::text && has(*m_widget, combFlag) && maximumLength() &&
           !has(*m_widget, multilineFlag | passwordFlag | fileSelectFlag);
}

bool PDFFormField::doesNotScroll() const {
    return kind() == Kind::text && has(*m_widget, doNotScrollFlag);
}

PDFFormField::Alignment PDFFormField::alignment() const {
    return formOf(*m_widget).alignment;
}

QString PDFFormField::onState() const {
    return formOf(*m_widget).onState;
}

bool PDFFormField::noToggleToOff() const {
    return kind() == Kind::radioButtons && has(*m_widget, noToggleToOffFlag);
}

std::vector<PDFFormField::Choice> PDFFormField::choices() const {
    const FormFieldValues& form = formOf(*m_widget);
    return form.choices ? *form.choices : std::vector<Choice>();
}

bool PDFFormField::isEditable() const {
    return kind() == Kind::comboBox && has(*m_widget, editFlag);
}

bool PDFFormField::allowsMultipleSelection() const {
    return kind() == Kind::listBox && has(*m_widget, multiSelectFlag);
}
