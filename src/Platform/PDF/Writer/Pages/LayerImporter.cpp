#include "LayerImporter.h"

#include "PdfValues.h"

#include <set>
#include <vector>

namespace {

std::set<QPDFObjGen> listed(QPDFObjectHandle array) {
    std::set<QPDFObjGen> found;
    if (array.isArray())
        for (const QPDFObjectHandle& item : array.aitems())
            found.insert(item.getObjGen());
    return found;
}

QPDFObjectHandle arrayAt(QPDFObjectHandle owner, const char* key) {
    if (!owner.getKey(key).isArray())
        owner.replaceKey(key, QPDFObjectHandle::newArray());
    return owner.getKey(key);
}

constexpr int deepest = 32;

/// The references to layers in an array that have come, as those here.
QPDFObjectHandle thoseThatCame(QPDFObjectHandle array, ObjectCopier& copier) {
    QPDFObjectHandle came = QPDFObjectHandle::newArray();
    if (array.isArray())
        for (const QPDFObjectHandle& layer : array.aitems())
            if (layer.isIndirect() && copier.hasReplacement(layer))
                came.appendItem(copier.replacement(layer));
    return came;
}

/// How layers are listed for people: with titles, and below each other.
QPDFObjectHandle listOf(QPDFObjectHandle list, ObjectCopier& copier, int depth = 0) {
    QPDFObjectHandle came = QPDFObjectHandle::newArray();
    QPDFObjectHandle title = QPDFObjectHandle::newNull();
    for (QPDFObjectHandle item : list.aitems()) {
        if (item.isString() && came.getArrayNItems() == 0) {
            title = item;
        } else if (item.isArray() && depth < deepest) {
            if (QPDFObjectHandle below = listOf(item, copier, depth + 1); below.getArrayNItems() > 0)
                came.appendItem(below);
        } else if (item.isIndirect() && copier.hasReplacement(item)) {
            came.appendItem(copier.replacement(item));
        }
    }
    if (title.isString() && came.getArrayNItems() > 0)
        came.insertItem(0, title.shallowCopy());
    return came;
}

/// Groups of which one layer shows at a time, and what makes layers show by itself.
void bringRules(QPDFObjectHandle from, QPDFObjectHandle to, ObjectCopier& copier) {
    const auto appendAll = [&to](const char* key, QPDFObjectHandle array) {
        if (array.getArrayNItems() > 0)
            for (const QPDFObjectHandle& item : array.aitems())
                arrayAt(to, key).appendItem(item);
    };
    appendAll("/Locked", thoseThatCame(PdfValues::entry(from, "/Locked"), copier));
    QPDFObjectHandle groups = PdfValues::entry(from, "/RBGroups");
    if (groups.isArray())
        for (const QPDFObjectHandle& group : groups.aitems())
            if (QPDFObjectHandle came = thoseThatCame(group, copier); came.getArrayNItems() > 1)
                arrayAt(to, "/RBGroups").appendItem(came);
    QPDFObjectHandle events = PdfValues::entry(from, "/AS");
    if (events.isArray())
        for (QPDFObjectHandle event : events.aitems()) {
            QPDFObjectHandle came = thoseThatCame(PdfValues::entry(event, "/OCGs"), copier);
            if (came.getArrayNItems() == 0)
                continue;
            QPDFObjectHandle copy = QPDFObjectHandle::newDictionary();
            for (const char* key : {"/Event", "/Category"})
                copy.replaceKey(key, copier.copy(event.getKey(key)));
            copy.replaceKey("/OCGs", came);
            arrayAt(to, "/AS").appendItem(copy);
        }
}

} // namespace

void LayerImporter::bringOver(QPDF& pdf, ObjectCopier& copier, ObjectStore& objects) {
    QPDFObjectHandle properties = pdf.getRoot().getKey("/OCProperties");
    QPDFObjectHandle layers = PdfValues::entry(properties, "/OCGs");
    if (!layers.isArray())
        return;
    QPDFObjectHandle usual = properties.getKey("/D");
    const std::set<QPDFObjGen> off = listed(PdfValues::entry(usual, "/OFF"));
    const std::set<QPDFObjGen> on = listed(PdfValues::entry(usual, "/ON"));
    const bool usuallyOff = PdfValues::entry(usual, "/BaseState").isNameAndEquals("/OFF");
    std::vector<QPDFObjectHandle> came;
    for (const QPDFObjectHandle& layer : layers.aitems())
        if (layer.isIndirect() && copier.hasReplacement(layer))
            came.push_back(layer);
    if (came.empty())
        return;
    QPDFObjectHandle ours = objects.dictionaryAt(objects.root(), "/OCProperties");
    QPDFObjectHandle configuration = objects.dictionaryAt(ours, "/D");
    for (const QPDFObjectHandle& layer : came) {
        QPDFObjectHandle copy = copier.replacement(layer);
        arrayAt(ours, "/OCGs").appendItem(copy);
        const QPDFObjGen id = layer.getObjGen();
        const bool isOff = off.count(id) > 0 || (usuallyOff && on.count(id) == 0);
        arrayAt(configuration, isOff ? "/OFF" : "/ON").appendItem(copy);
    }
    QPDFObjectHandle order = PdfValues::entry(usual, "/Order");
    for (const QPDFObjectHandle& item : listOf(order.isArray() ? order : layers, copier).aitems())
        arrayAt(configuration, "/Order").appendItem(item);
    bringRules(usual, configuration, copier);
    objects.noteChange(ours);
    objects.noteChange(configuration);
}
