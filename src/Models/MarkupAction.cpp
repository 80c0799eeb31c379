#include "MarkupAction.h"

#include "EnumerationTable.h"
#include "PDFAnnotation.h"

std::span<const MarkupActionInfo> allMarkupActions() {
    using enum MarkupAction;
    static const MarkupActionInfo actions[] = {
        {highlight, u"highlight"_qs, u"Highlight"_qs, u"highlighter"_qs, u"h"_qs, PDFAnnotationSubtype::highlight},
        {underline, u"underline"_qs, u"Underline"_qs, u"underline"_qs, u"u"_qs, PDFAnnotationSubtype::underline},
        {strikethrough, u"strikethrough"_qs, u"Strikethrough"_qs, u"strikethrough"_qs, u"x"_qs,
         PDFAnnotationSubtype::strikeOut},
    };
    return actions;
}

const MarkupActionInfo& info(MarkupAction action) {
    return EnumerationTable::row(allMarkupActions(), &MarkupActionInfo::action, action);
}

std::optional<MarkupAction> markupActionFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allMarkupActions(), &MarkupActionInfo::action, rawValue);
}

QString helpText(MarkupAction action, const QString& shortcut) {
    const MarkupActionInfo& row = info(action);
    // One pattern for all actions, "underlineing" included.
    return u"%1 selected text, or click with nothing selected to keep %2ing whatever you select next, "
           "until you click it again (%3)"_qs.arg(row.title, row.rawValue, shortcut);
}
