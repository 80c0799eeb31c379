#include "MarkupAction.h"

#include "EnumerationTable.h"
#include "PDFAnnotation.h"

std::span<const MarkupActionInfo> allMarkupActions() {
    using enum MarkupAction;
    static const MarkupActionInfo actions[] = {
        {highlight, QStringLiteral("highlight"), QStringLiteral("Highlight"), QStringLiteral("highlighter"),
         QStringLiteral("h"), PDFAnnotationSubtype::highlight},
        {underline, QStringLiteral("underline"), QStringLiteral("Underline"), QStringLiteral("underline"),
         QStringLiteral("u"), PDFAnnotationSubtype::underline},
        {strikethrough, QStringLiteral("strikethrough"), QStringLiteral("Strikethrough"),
         QStringLiteral("strikethrough"), QStringLiteral("x"), PDFAnnotationSubtype::strikeOut},
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
    return QStringLiteral("%1 selected text, or click with nothing selected to keep %2ing whatever you select next, "
                          "until you click it again (%3)")
        .arg(row.title, row.rawValue, shortcut);
}
