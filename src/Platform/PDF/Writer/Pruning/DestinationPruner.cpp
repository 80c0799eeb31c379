#include "Pruner.h"

#include "ActionPruner.h"
#include "NameTree.h"
#include "NamedDestinations.h"
#include "PdfValues.h"
#include "RemovedPages.h"

void Pruner::pruneDestinations(const RemovedPages& gone, ObjectStore& objects) {
    NamedDestinations destinations(objects.pdf());
    const auto pageOf = [](QPDFObjectHandle place) {
        return place.isArray() && place.getArrayNItems() > 0 ? place.getArrayItem(0) : QPDFObjectHandle::newNull();
    };
    // Anything but a place on a removed page, odd things too, is left alone.
    const auto isGone = [&](QPDFObjectHandle destination) {
        QPDFObjectHandle page = pageOf(destinations.explicitDestination(destination));
        return gone.hasPage(page) && gone.replacement(page).isNull();
    };
    const auto onReplacement = [&](QPDFObjectHandle place) {
        QPDFObjectHandle page = gone.replacement(pageOf(place));
        if (page.isNull())
            return page;
        QPDFObjectHandle now = place.shallowCopy();
        now.setArrayItem(0, page);
        return now;
    };
    ActionPruner actions(
        isGone, [&gone](QPDFObjectHandle named) { return gone.hasField(named); }, onReplacement);
    actions.setLinks(objects.links());
    QPDFObjectHandle root = objects.root();
    pruneOutline(actions, objects);
    actions.pruneTarget(root, "/OpenAction", "/OpenAction");
    actions.pruneTriggers(root);
    for (const QPDFObjectHandle& page : gone.remaining)
        actions.prunePage(page);

    // The names last: they were needed to see where the others lead.
    const auto isGoneName = [&](QPDFObjectHandle destination) {
        QPDFObjectHandle place = destinations.explicitDestination(destination);
        if (QPDFObjectHandle page = gone.replacement(pageOf(place)); !page.isNull())
            place.setArrayItem(0, page);
        return isGone(destination);
    };
    QPDFObjectHandle old = root.getKey("/Dests");
    if (old.isDictionary())
        for (const std::string& name : old.getKeys())
            if (isGoneName(old.getKey(name)))
                old.removeKey(name);
    QPDFObjectHandle names = root.getKey("/Names");
    if (!names.isDictionary())
        return;
    NameTree::removeIf(names.getKey("/Dests"), "/Names",
                       [&](const QPDFObjectHandle&, const QPDFObjectHandle& value) { return isGoneName(value); });
    // Pages may have names of their own.
    for (const char* key : {"/Pages", "/Templates"})
        NameTree::removeIf(names.getKey(key), "/Names",
                           [&](const QPDFObjectHandle&, const QPDFObjectHandle& value) { return gone.hasPage(value); });
}
