#include "Pruner.h"

#include "PdfValues.h"
#include "RemovedPages.h"

namespace {

constexpr std::size_t mostBeads = 100000;

/// The thread's beads, which form a ring, from its first on.
std::vector<QPDFObjectHandle> beadsOf(QPDFObjectHandle thread) {
    std::vector<QPDFObjectHandle> beads;
    std::set<QPDFObjGen> seen;
    QPDFObjectHandle bead = PdfValues::entry(thread, "/F");
    while (bead.isDictionary() && bead.isIndirect() && beads.size() < mostBeads &&
           seen.insert(bead.getObjGen()).second) {
        beads.push_back(bead);
        bead = bead.getKey("/N");
    }
    return beads;
}

/// False when no bead of the thread is left.
bool pruneThread(QPDFObjectHandle thread, const RemovedPages& gone, ObjectStore& objects) {
    std::vector<QPDFObjectHandle> kept;
    bool lost = false;
    for (QPDFObjectHandle& bead : beadsOf(thread)) {
        if (gone.hasPage(bead.getKey("/P"))) {
            objects.pdf().replaceObject(bead.getObjGen(), QPDFObjectHandle::newNull());
            lost = true;
        } else {
            kept.push_back(bead);
        }
    }
    if (!lost || kept.empty())
        return !kept.empty();
    thread.replaceKey("/F", kept.front());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        kept[i].replaceKey("/N", kept[(i + 1) % kept.size()]);
        kept[i].replaceKey("/V", kept[(i + kept.size() - 1) % kept.size()]);
    }
    return true;
}

} // namespace

void Pruner::pruneThreads(const RemovedPages& gone, ObjectStore& objects) {
    QPDFObjectHandle threads = objects.root().getKey("/Threads");
    for (int i = threads.isArray() ? threads.getArrayNItems() - 1 : -1; i >= 0; --i) {
        QPDFObjectHandle thread = threads.getArrayItem(i);
        if (thread.isDictionary() && pruneThread(thread, gone, objects))
            continue;
        if (thread.isIndirect())
            objects.pdf().replaceObject(thread.getObjGen(), QPDFObjectHandle::newNull());
        threads.eraseItem(i);
    }
}
