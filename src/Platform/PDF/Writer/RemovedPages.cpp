#include "RemovedPages.h"

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

void Pruner::prune(const RemovedPages& gone, ObjectStore& objects) {
    pruneResources(gone, objects);
    pruneDestinations(gone, objects);
    pruneForm(gone, objects);
    pruneThreads(gone, objects);
    pruneStructure(gone, objects);
    // Whatever still refers to them, which may be anything, now refers to nothing.
    for (const QPDFObjGen& id : gone.annotations)
        objects.pdf().replaceObject(id, QPDFObjectHandle::newNull());
    for (const QPDFObjGen& id : gone.pages)
        objects.pdf().replaceObject(id, QPDFObjectHandle::newNull());
}
