#include "StructureLinks.h"

#include "Logging.h"
#include "PdfValues.h"

#include <qpdf/QPDFNumberTreeObjectHelper.hh>

#include <vector>

namespace {

/// The element whose content the annotation is; null for none.
QPDFObjectHandle elementOf(QPDFObjectHandle annotation, ObjectStore& objects) {
    QPDFObjectHandle found = QPDFObjectHandle::newNull();
    QPDFObjectHandle tree = PdfValues::entry(objects.root().getKey("/StructTreeRoot"), "/ParentTree");
    long long key = 0;
    if (!tree.isDictionary() || !annotation.getKey("/StructParent").getValueAsInt(key))
        return found;
    try {
        QPDFNumberTreeObjectHelper(tree, objects.pdf(), false).findObject(key, found);
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "looking up a structure element failed:" << Logging::causes(error);
    }
    return found;
}

} // namespace

void StructureLinks::drop(QPDFObjectHandle annotation, ObjectStore& objects) {
    QPDFObjectHandle element = annotation.isIndirect() ? elementOf(annotation, objects) : QPDFObjectHandle::newNull();
    if (!element.isDictionary() || !element.isIndirect())
        return;
    QPDFObjectHandle kids = element.getKey("/K");
    std::vector<QPDFObjectHandle> kept = kids.isArray() ? kids.getArrayAsVector() : std::vector{kids};
    const std::size_t before = kept.size();
    std::erase_if(kept, [&annotation](const QPDFObjectHandle& kid) {
        QPDFObjectHandle object = PdfValues::entry(kid, "/Obj");
        return object.isIndirect() && object.getObjGen() == annotation.getObjGen();
    });
    if (kept.size() == before)
        return;
    objects.set(element, "/K", QPDFObjectHandle::newArray(kept));
    if (kept.empty())
        for (const char* key : {"/K", "/ActualText", "/Alt", "/E", "/Phoneme", "/T"})
            objects.remove(element, key);
}
