#include "Pruner.h"

#include "ActionPruner.h"
#include "NameTree.h"
#include "NamedDestinations.h"
#include "PdfValues.h"
#include "RemovedPages.h"

void Pruner::pruneDestinations(const RemovedPages& gone, ObjectStore& objects) {
    NamedDestinations destinations(objects.pdf());
    // Anything but a place on a removed page, odd things too, is left alone.
    const auto isGone = [&](QPDFObjectHandle destination) {
        QPDFObjectHandle place = destinations.explicitDestination(destination);
        return place.isArray() && place.getArrayNItems() > 0 && gone.hasPage(place.getArrayItem(0));
    };
    ActionPruner actions(isGone, [&gone](QPDFObjectHandle named) { return gone.hasField(named); });
    QPDFObjectHandle root = objects.root();
    pruneOutline(actions, objects);
    actions.pruneTarget(root, "/OpenAction", "/OpenAction");
    actions.pruneTriggers(root);
    for (const QPDFObjectHandle& page : gone.remaining)
        actions.prunePage(page);

    // The names last: they were needed to see where the others lead.
    QPDFObjectHandle old = root.getKey("/Dests");
    if (old.isDictionary())
        for (const std::string& name : old.getKeys())
            if (isGone(old.getKey(name)))
                old.removeKey(name);
    QPDFObjectHandle names = root.getKey("/Names");
    if (!names.isDictionary())
        return;
    NameTree::removeIf(names.getKey("/Dests"), "/Names",
                       [&](const QPDFObjectHandle&, const QPDFObjectHandle& value) { return isGone(value); });
    // Pages may have names of their own.
    for (const char* key : {"/Pages", "/Templates"})
        NameTree::removeIf(names.getKey(key), "/Names",
                           [&](const QPDFObjectHandle&, const QPDFObjectHandle& value) { return gone.hasPage(value); });
}
