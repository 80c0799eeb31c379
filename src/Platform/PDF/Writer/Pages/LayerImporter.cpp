#include "LayerImporter.h"

#include "PdfValues.h"

#include <set>

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
    for (const QPDFObjectHandle& layer : layers.aitems()) {
        if (!layer.isIndirect() || !copier.hasReplacement(layer))
            continue;
        QPDFObjectHandle copy = copier.copy(layer);
        QPDFObjectHandle ours = objects.dictionaryAt(objects.root(), "/OCProperties");
        QPDFObjectHandle configuration = objects.dictionaryAt(ours, "/D");
        arrayAt(ours, "/OCGs").appendItem(copy);
        arrayAt(configuration, "/Order").appendItem(copy);
        const QPDFObjGen id = layer.getObjGen();
        const bool isOff = off.count(id) > 0 || (usuallyOff && on.count(id) == 0);
        arrayAt(configuration, isOff ? "/OFF" : "/ON").appendItem(copy);
        objects.noteChange(ours);
        objects.noteChange(configuration);
    }
}
