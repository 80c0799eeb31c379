#include "RemovedPages.h"

#include "PdfValues.h"

RemovedPages::RemovedPages(std::vector<QPDFObjectHandle> gone, std::vector<QPDFObjectHandle> kept)
    : removed(std::move(gone)), remaining(std::move(kept)) {
    const auto forEachAnnotation = [](QPDFObjectHandle page, auto visit) {
        QPDFObjectHandle list = page.getKey("/Annots");
        if (list.isArray())
            for (const QPDFObjectHandle& annotation : list.aitems())
                if (annotation.isIndirect())
                    visit(annotation.getObjGen());
    };
    for (QPDFObjectHandle& page : removed) {
        pages.insert(page.getObjGen());
        forEachAnnotation(page, [this](QPDFObjGen id) { annotations.insert(id); });
    }
    for (QPDFObjectHandle& page : remaining) {
        pages.erase(page.getObjGen());
        forEachAnnotation(page, [this](QPDFObjGen id) { annotations.erase(id); });
    }
}

bool RemovedPages::hasField(QPDFObjectHandle named) const {
    if (named.isString())
        return fieldNames.count(PdfValues::toText(named)) > 0;
    return hasAnnotation(named) || (named.isIndirect() && fields.count(named.getObjGen()) > 0);
}
