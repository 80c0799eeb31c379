#include "OutlinePages.h"

#include "PdfValues.h"
#include "SourceFile.h"

#include <set>
#include <vector>

namespace {

/// The same destination by the page's object; null for one that doesn't give a place.
QPDFObjectHandle pinned(QPDFObjectHandle destination, SourceFile& file) {
    if (!destination.isArray() || destination.getArrayNItems() == 0 || !destination.getArrayItem(0).isInteger())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle page = file.page(int(PdfValues::toNumber(destination.getArrayItem(0))));
    if (!page.isIndirect() || !page.isDictionary())
        return QPDFObjectHandle::newNull();
    QPDFObjectHandle copy = destination.shallowCopy();
    copy.setArrayItem(0, page);
    return copy;
}

} // namespace

void OutlinePages::pin(SourceFile& file, ObjectStore& objects) {
    std::set<QPDFObjGen> seen;
    std::vector<QPDFObjectHandle> todo{PdfValues::entry(objects.root().getKey("/Outlines"), "/First")};
    while (!todo.empty()) {
        QPDFObjectHandle item = todo.back();
        todo.pop_back();
        if (!item.isDictionary() || !item.isIndirect() || !seen.insert(item.getObjGen()).second)
            continue;
        if (QPDFObjectHandle place = pinned(item.getKey("/Dest"), file); !place.isNull())
            objects.set(item, "/Dest", place);
        QPDFObjectHandle action = item.getKey("/A");
        if (PdfValues::entry(action, "/S").isNameAndEquals("/GoTo"))
            if (QPDFObjectHandle place = pinned(action.getKey("/D"), file); !place.isNull()) {
                QPDFObjectHandle changed = action.shallowCopy();
                changed.replaceKey("/D", place);
                objects.set(item, "/A", changed);
            }
        todo.push_back(item.getKey("/First"));
        todo.push_back(item.getKey("/Next"));
    }
}
