#pragma once

#include "ObjectStore.h"

#include <set>
#include <vector>

/// Pages of a file that are no longer in its page tree, and what belongs to them alone. Only files that are rewritten
/// as a whole are pruned: then an object that nothing refers to is gone.
struct RemovedPages {
    std::set<QPDFObjGen> pages;
    std::set<QPDFObjGen> annotations;        ///< apart from those that a page which stays has too
    std::vector<QPDFObjectHandle> removed;   ///< the page objects
    std::vector<QPDFObjectHandle> remaining; ///< pages of the tree, those brought in too

    RemovedPages(std::vector<QPDFObjectHandle> gone, std::vector<QPDFObjectHandle> kept);

    [[nodiscard]] bool hasPage(QPDFObjectHandle object) const {
        return object.isIndirect() && pages.count(object.getObjGen()) > 0;
    }
    [[nodiscard]] bool hasAnnotation(QPDFObjectHandle object) const {
        return object.isIndirect() && annotations.count(object.getObjGen()) > 0;
    }
};

/// Takes out of a file all that only removed pages needed, so that nothing of them can be found in the file again.
namespace Pruner {

/// Everything, in the order that the parts below need.
void prune(const RemovedPages& gone, ObjectStore& objects);

/// Destinations: names of them, outline entries, links and the action at opening that lead to a removed page.
void pruneDestinations(const RemovedPages& gone, ObjectStore& objects);

/// Widgets of removed pages, with the fields that only they show.
void pruneForm(const RemovedPages& gone, ObjectStore& objects);

/// Structure elements for the content of removed pages, and texts that stand for it.
void pruneStructure(const RemovedPages& gone, ObjectStore& objects);

/// The parts of articles that ran over removed pages.
void pruneThreads(const RemovedPages& gone, ObjectStore& objects);

/// Entries of resource dictionaries that removed pages used and no remaining page uses, though it could.
void pruneResources(const RemovedPages& gone, ObjectStore& objects);

/// Entries of the pages' resource dictionaries that none of these pages uses. For pages that are taken out of a file,
/// which would bring along what they share with others.
void dropUnusedResources(const std::vector<QPDFObjectHandle>& pages);

} // namespace Pruner
