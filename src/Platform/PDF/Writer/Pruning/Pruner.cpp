#include "Pruner.h"

#include "ActionPruner.h"
#include "PDFSource.h"
#include "PageTree.h"
#include "RemovedPages.h"

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

void Pruner::separateFromOthers(SourceFiles::Foreign& file, const std::set<int>& pageNumbers) {
    FileObjects objects(file.file.pdf());
    std::vector<QPDFObjectHandle> pages;
    for (const int number : pageNumbers)
        if (QPDFObjectHandle page = file.file.page(number); page.isDictionary() && page.isIndirect())
            pages.push_back(page);
    for (const QPDFObjectHandle& page : pages)
        PageTree::keepInherited(page, objects);
    ActionPruner actions([&file](QPDFObjectHandle destination) {
        QPDFObjectHandle place = file.names.explicitDestination(destination);
        return place.isNull() || place.getArrayNItems() == 0 || !place.getArrayItem(0).isIndirect() ||
               !file.copier.hasReplacement(place.getArrayItem(0));
    });
    for (const QPDFObjectHandle& page : pages)
        actions.prunePage(page);
    if (int(pageNumbers.size()) < file.file.source()->pageCount())
        dropUnusedResources(pages);
}
