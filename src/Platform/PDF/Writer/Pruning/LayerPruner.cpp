#include "Pruner.h"

#include "ContentNames.h"
#include "PdfValues.h"
#include "RemovedPages.h"

#include <string>

namespace {

using Layers = std::set<QPDFObjGen>;

constexpr int deepestList = 32;

/// The layers that a membership names (ISO 32000-1, 8.11.2.2), or the one that it is itself.
void addLayers(QPDFObjectHandle membership, Layers& layers, int depth = 0) {
    if (depth > deepestList)
        return;
    if (membership.isArray()) { // of layers, or an expression of them
        for (const QPDFObjectHandle& item : membership.aitems())
            addLayers(item, layers, depth + 1);
    } else if (PdfValues::entry(membership, "/Type").isNameAndEquals("/OCMD")) {
        for (const char* key : {"/OCGs", "/VE"})
            addLayers(membership.getKey(key), layers, depth + 1);
    } else if (membership.isDictionary() && membership.isIndirect()) {
        layers.insert(membership.getObjGen());
    }
}

/// The layers that the pages' content, and all that it draws, belongs to.
Layers layersOf(const std::vector<QPDFObjectHandle>& pages) {
    Layers layers;
    ContentNames::Walker walker([&layers](const ContentNames::User& user) {
        if (QPDFObjectHandle properties = PdfValues::entry(user.resources, "/Properties"); properties.isDictionary())
            for (const auto& [name, entry] : properties.ditems())
                addLayers(entry, layers);
        if (QPDFObjectHandle drawn = PdfValues::entry(user.resources, "/XObject"); drawn.isDictionary())
            for (auto& [name, entry] : drawn.getDictAsMap())
                if (entry.isStream())
                    addLayers(entry.getDict().getKey("/OC"), layers);
    });
    for (QPDFObjectHandle page : pages) {
        walker.walkPage(page);
        if (QPDFObjectHandle annotations = page.getKey("/Annots"); annotations.isArray())
            for (const QPDFObjectHandle& annotation : annotations.aitems())
                addLayers(PdfValues::entry(annotation, "/OC"), layers);
    }
    return layers;
}

/// Takes layers out of an array, and out of those within it that nothing is left of. What stood below a layer in the
/// list for people takes its place.
void removeFrom(QPDFObjectHandle array, const Layers& gone, int depth = 0) {
    if (!array.isArray() || depth > deepestList)
        return;
    std::vector<QPDFObjectHandle> kept;
    bool isBelowGone = false;
    for (QPDFObjectHandle item : array.aitems()) {
        const bool isGone = item.isIndirect() && gone.count(item.getObjGen()) > 0;
        if (item.isArray()) {
            const bool wasEmpty = item.getArrayNItems() == 0;
            removeFrom(item, gone, depth + 1);
            const std::vector<QPDFObjectHandle> below = item.getArrayAsVector();
            const bool isTitle = below.size() == 1 && QPDFObjectHandle(below.front()).isString();
            if (isBelowGone)
                kept.insert(kept.end(), below.begin(), below.end());
            else if (wasEmpty || (!below.empty() && !isTitle))
                kept.push_back(item);
        } else if (!isGone) {
            kept.push_back(item);
        }
        isBelowGone = isGone;
    }
    array.setArrayFromVector(kept);
}

void removeFromConfiguration(QPDFObjectHandle configuration, const Layers& gone) {
    for (const char* key : {"/ON", "/OFF", "/Locked", "/Order", "/RBGroups"})
        removeFrom(PdfValues::entry(configuration, key), gone);
    if (QPDFObjectHandle events = PdfValues::entry(configuration, "/AS"); events.isArray())
        for (const QPDFObjectHandle& event : events.aitems())
            removeFrom(PdfValues::entry(event, "/OCGs"), gone);
}

} // namespace

void Pruner::pruneLayers(const RemovedPages& gone, ObjectStore& objects) {
    QPDFObjectHandle properties = objects.root().getKey("/OCProperties");
    if (!PdfValues::entry(properties, "/OCGs").isArray())
        return;
    Layers layers = layersOf(gone.removed);
    if (layers.empty())
        return;
    for (const QPDFObjGen& used : layersOf(gone.remaining))
        layers.erase(used);
    removeFrom(properties.getKey("/OCGs"), layers);
    removeFromConfiguration(properties.getKey("/D"), layers);
    if (QPDFObjectHandle others = properties.getKey("/Configs"); others.isArray())
        for (const QPDFObjectHandle& other : others.aitems())
            removeFromConfiguration(other, layers);
}
