#pragma once

#include "ObjectStore.h"
#include "SourceFiles.h"

#include <set>
#include <vector>

class ActionPruner;
class NameImporter;
struct RemovedPages;

/// Takes out of a file all that only removed pages needed, so that nothing of them can be found in the file again.
namespace Pruner {

/// Everything, in the order that the parts below need.
void prune(RemovedPages gone, ObjectStore& objects);

/// Destinations: names of them, outline entries, links and the action at opening that lead to a removed page. What
/// actions do to fields that are gone goes, too.
void pruneDestinations(const RemovedPages& gone, ObjectStore& objects);

/// Entries of the outline that `actions` takes the target of; those that have others below them stay without it.
void pruneOutline(ActionPruner& actions, ObjectStore& objects);

/// Widgets of removed pages, with the fields that only they show, of which `gone` is told.
void pruneForm(RemovedPages& gone, ObjectStore& objects);

/// Structure elements for the content of removed pages, and texts that stand for it.
void pruneStructure(const RemovedPages& gone, ObjectStore& objects);

/// The parts of articles that ran over removed pages.
void pruneThreads(const RemovedPages& gone, ObjectStore& objects);

/// Layers that only removed pages used, out of the lists of the file's layers.
void pruneLayers(const RemovedPages& gone, ObjectStore& objects);

/// Entries of resource dictionaries that removed pages used and no remaining page uses, though it could.
void pruneResources(const RemovedPages& gone, ObjectStore& objects);

/// Fonts that removed pages used and no remaining page uses, though it lists them: their maps to text tell which
/// letters were on the page.
void pruneFonts(const RemovedPages& gone, ObjectStore& objects);

/// Entries of the pages' resource dictionaries that none of these pages uses. For pages that are taken out of a file,
/// which would bring along what they share with others.
void dropUnusedResources(const std::vector<QPDFObjectHandle>& pages);

/// Cuts what the pages share with others of their file down to what these pages need: names of resources, and links and
/// actions that lead to pages which don't come along. Those that stay get the names that `names` tells. For pages of
/// `file` that are about to be copied, each with its replacement announced to the file's copier. `pageNumbers` are
/// zero-based.
void separateFromOthers(SourceFiles::Foreign& file, const std::set<int>& pageNumbers, const NameImporter& names);

} // namespace Pruner
