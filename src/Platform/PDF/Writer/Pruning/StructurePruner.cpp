#include "Pruner.h"

#include "NameTree.h"
#include "PdfValues.h"
#include "RemovedPages.h"

namespace {

/// Walks the structure tree (ISO 32000-1, 14.7) from the leaves up, with a stack of its own since a tree may be deeper
/// than the program's.
class StructurePruner {
public:
    StructurePruner(const RemovedPages& gone, ObjectStore& objects) : m_gone(gone), m_objects(objects) {}

    void prune(QPDFObjectHandle root) {
        pruneElements(root);
        collectKeys();
        NameTree::removeIf(root.getKey("/ParentTree"), "/Nums",
                           [this](QPDFObjectHandle key, const QPDFObjectHandle& value) {
                               return m_keys.count(key.isInteger() ? key.getIntValue() : -1) > 0 || isGoneParent(value);
                           });
        NameTree::removeIf(
            root.getKey("/IDTree"), "/Names",
            [this](const QPDFObjectHandle&, const QPDFObjectHandle& value) { return isGoneElement(value); });
        for (const QPDFObjGen& id : m_goneElements)
            m_objects.pdf().replaceObject(id, QPDFObjectHandle::newNull());
    }

private:
    /// An element whose kids are being looked at.
    struct Level {
        QPDFObjectHandle element;
        QPDFObjectHandle page; ///< of content that names none itself
        std::vector<QPDFObjectHandle> kids;
        std::vector<QPDFObjectHandle> kept = {};
        std::size_t next = 0;
        bool lostContent = false; ///< of its own
        bool lost = false;        ///< anywhere below
    };

    Level levelFor(QPDFObjectHandle element, const QPDFObjectHandle& inheritedPage) {
        QPDFObjectHandle page = element.getKey("/Pg");
        Level level{element, page.isDictionary() ? page : inheritedPage, {}};
        QPDFObjectHandle kids = element.getKey("/K");
        if (kids.isArray())
            level.kids = kids.getArrayAsVector();
        else if (!kids.isNull())
            level.kids = {kids};
        return level;
    }

    static bool isElement(QPDFObjectHandle kid) {
        if (!kid.isDictionary())
            return false;
        QPDFObjectHandle type = kid.getKey("/Type");
        return !type.isNameAndEquals("/MCR") && !type.isNameAndEquals("/OBJR");
    }

    void pruneElements(QPDFObjectHandle root) {
        std::vector<Level> levels{levelFor(root, QPDFObjectHandle::newNull())};
        while (!levels.empty()) {
            Level& level = levels.back();
            if (level.next == level.kids.size()) {
                const Level done = std::move(level);
                levels.pop_back();
                finish(done, levels.empty() ? nullptr : &levels.back());
                continue;
            }
            QPDFObjectHandle kid = level.kids[level.next++];
            if (!isElement(kid)) {
                if (isGoneContent(kid, level.page))
                    level.lostContent = level.lost = true;
                else
                    level.kept.push_back(kid);
                continue;
            }
            const bool again = kid.isIndirect() && !m_seen.insert(kid.getObjGen()).second;
            if (!again)
                levels.push_back(levelFor(kid, level.page));
        }
    }

    bool isGoneContent(QPDFObjectHandle kid, QPDFObjectHandle page) const {
        if (!kid.isDictionary())
            return m_gone.hasPage(page);
        QPDFObjectHandle own = kid.getKey("/Pg");
        return m_gone.hasPage(own.isDictionary() ? own : page) || m_gone.hasAnnotation(kid.getKey("/Obj"));
    }

    void finish(const Level& done, Level* parent) {
        QPDFObjectHandle element = done.element;
        const bool isEmpty = done.kids.empty() ? m_gone.hasPage(element.getKey("/Pg")) : done.kept.empty() && done.lost;
        if (parent && isEmpty) {
            if (element.isIndirect())
                m_goneElements.insert(element.getObjGen());
            parent->lost = true;
            return;
        }
        if (parent) {
            parent->kept.push_back(element);
            parent->lost = parent->lost || done.lost;
        }
        if (done.kept.size() != done.kids.size())
            element.replaceKey("/K", QPDFObjectHandle::newArray(done.kept));
        if (m_gone.hasPage(element.getKey("/Pg")))
            element.removeKey("/Pg");
        if (done.lost)
            removeTexts(element, done.lostContent);
    }

    /// These stand for all that is below the element, so for what is gone, too.
    static void removeTexts(QPDFObjectHandle element, bool lostContent) {
        for (const char* key : {"/ActualText", "/Alt", "/E", "/Phoneme"})
            element.removeKey(key);
        if (lostContent)
            element.removeKey("/T");
        QPDFObjectHandle attributes = element.getKey("/A");
        if (attributes.isDictionary())
            attributes.removeKey("/Summary");
        if (attributes.isArray())
            for (QPDFObjectHandle attribute : attributes.aitems())
                if (attribute.isDictionary())
                    attribute.removeKey("/Summary");
    }

    void collectKeys() {
        const auto forEachKey = [](QPDFObjectHandle page, auto visit) {
            const auto visitKey = [&visit](QPDFObjectHandle owner, const char* name) {
                long long key = 0;
                if (PdfValues::entry(owner, name).getValueAsInt(key))
                    visit(key);
            };
            visitKey(page, "/StructParents");
            QPDFObjectHandle annotations = page.getKey("/Annots");
            if (annotations.isArray())
                for (QPDFObjectHandle annotation : annotations.aitems())
                    if (annotation.isDictionary())
                        visitKey(annotation, "/StructParent");
        };
        for (const QPDFObjectHandle& page : m_gone.removed)
            forEachKey(page, [this](long long key) { m_keys.insert(key); });
        for (const QPDFObjectHandle& page : m_gone.remaining)
            forEachKey(page, [this](long long key) { m_keys.erase(key); });
    }

    bool isGoneElement(QPDFObjectHandle element) {
        if (!element.isDictionary() || !element.isIndirect())
            return !element.isDictionary();
        if (m_goneElements.count(element.getObjGen()) > 0)
            return true;
        // One that the tree doesn't reach.
        if (m_seen.count(element.getObjGen()) > 0 || !m_gone.hasPage(element.getKey("/Pg")))
            return false;
        m_goneElements.insert(element.getObjGen());
        return true;
    }

    /// For the values of the parent tree: an element, or an array of the elements of a page's content.
    bool isGoneParent(QPDFObjectHandle value) {
        if (!value.isArray())
            return isGoneElement(value);
        bool holds = false;
        for (int i = 0; i < value.getArrayNItems(); ++i) {
            if (isGoneElement(value.getArrayItem(i)))
                value.setArrayItem(i, QPDFObjectHandle::newNull());
            else
                holds = true;
        }
        return !holds;
    }

    const RemovedPages& m_gone;
    ObjectStore& m_objects;
    std::set<QPDFObjGen> m_seen;
    std::set<QPDFObjGen> m_goneElements;
    std::set<long long> m_keys; // into the parent tree, of removed pages alone
};

} // namespace

void Pruner::pruneStructure(const RemovedPages& gone, ObjectStore& objects) {
    QPDFObjectHandle tree = objects.root().getKey("/StructTreeRoot");
    if (tree.isDictionary())
        StructurePruner(gone, objects).prune(tree);
}
