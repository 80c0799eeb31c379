#include "Pruner.h"

#include "ActionPruner.h"
#include "PdfValues.h"

namespace {

/// Walks an outline (ISO 32000-1, 12.3.3) from the leaves up, with a stack of its own since an outline may be deeper
/// than the program's.
class OutlinePruner {
public:
    OutlinePruner(ActionPruner& actions, ObjectStore& objects) : m_actions(actions), m_objects(objects) {}

    void prune(QPDFObjectHandle outline) {
        std::vector<Level> levels{{outline, outline.getKey("/First")}};
        while (!levels.empty()) {
            QPDFObjectHandle item = levels.back().next;
            if (item.isDictionary() && item.isIndirect() && m_seen.insert(item.getObjGen()).second) {
                levels.back().next = item.getKey("/Next");
                const bool led = leads(item);
                m_actions.pruneTarget(item, "/Dest", "/A");
                levels.push_back({item, item.getKey("/First")});
                levels.back().lostTarget = led && !leads(item);
                continue;
            }
            const Level done = std::move(levels.back());
            levels.pop_back();
            if (done.changed)
                link(done);
            if (!levels.empty())
                finish(done, levels.back());
        }
    }

private:
    /// An entry whose children are being looked at.
    struct Level {
        QPDFObjectHandle item;
        QPDFObjectHandle next;
        std::vector<QPDFObjectHandle> kept = {};
        bool lostTarget = false;
        bool changed = false; ///< something below it went
    };

    static bool leads(QPDFObjectHandle item) { return item.hasKey("/Dest") || item.hasKey("/A"); }

    void finish(const Level& done, Level& above) {
        above.changed = above.changed || done.changed;
        // What entries stay below an entry keep it as their heading; one over nothing goes with what it stood over.
        const bool isHeading = done.changed && !leads(done.item);
        if (done.kept.empty() && (done.lostTarget || isHeading)) {
            above.changed = true;
            m_objects.erase(done.item);
        } else {
            above.kept.push_back(done.item);
        }
    }

    void link(const Level& level) {
        const auto set = [](QPDFObjectHandle object, const char* key, const QPDFObjectHandle* value) {
            if (value)
                object.replaceKey(key, *value);
            else
                object.removeKey(key);
        };
        const std::vector<QPDFObjectHandle>& kept = level.kept;
        long long visible = 0;
        for (std::size_t i = 0; i < kept.size(); ++i) {
            set(kept[i], "/Prev", i > 0 ? &kept[i - 1] : nullptr);
            set(kept[i], "/Next", i + 1 < kept.size() ? &kept[i + 1] : nullptr);
            visible += 1 + std::max(0LL, countOf(kept[i]));
        }
        QPDFObjectHandle item = level.item;
        set(item, "/First", kept.empty() ? nullptr : &kept.front());
        set(item, "/Last", kept.empty() ? nullptr : &kept.back());
        const QPDFObjectHandle count = QPDFObjectHandle::newInteger(countOf(item) < 0 ? -visible : visible);
        set(item, "/Count", kept.empty() ? nullptr : &count);
    }

    static long long countOf(QPDFObjectHandle item) {
        long long count = 0;
        return item.getKey("/Count").getValueAsInt(count) ? count : 0;
    }

    ActionPruner& m_actions;
    ObjectStore& m_objects;
    std::set<QPDFObjGen> m_seen;
};

} // namespace

void Pruner::pruneOutline(ActionPruner& actions, ObjectStore& objects) {
    QPDFObjectHandle outline = objects.root().getKey("/Outlines");
    if (!outline.isDictionary())
        return;
    OutlinePruner(actions, objects).prune(outline);
    if (!outline.hasKey("/First"))
        objects.remove(objects.root(), "/Outlines");
}
