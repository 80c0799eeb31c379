#include "NameTree.h"

#include "PdfValues.h"

#include <set>

namespace {

constexpr int deepest = 64;

class Walker {
public:
    Walker(std::string leafKey, std::function<bool(QPDFObjectHandle, QPDFObjectHandle)> isGone, bool changes)
        : m_leafKey(std::move(leafKey)), m_isGone(std::move(isGone)), m_changes(changes) {}

    /// False when the node holds nothing (any more).
    bool walk(QPDFObjectHandle node, int depth = 0) {
        if (!node.isDictionary() || depth > deepest || (node.isIndirect() && !m_seen.insert(node.getObjGen()).second))
            return false;
        bool holds = walkLeaf(node);
        QPDFObjectHandle kids = node.getKey("/Kids");
        if (kids.isArray()) {
            std::vector<QPDFObjectHandle> kept;
            for (const QPDFObjectHandle& kid : kids.aitems())
                if (walk(kid, depth + 1))
                    kept.push_back(kid);
            if (m_changes && int(kept.size()) != kids.getArrayNItems())
                kids.setArrayFromVector(kept);
            holds = holds || !kept.empty();
        }
        if (m_changes && depth > 0 && holds)
            setLimits(node);
        return holds;
    }

private:
    bool walkLeaf(QPDFObjectHandle node) {
        QPDFObjectHandle pairs = node.getKey(m_leafKey);
        if (!pairs.isArray())
            return false;
        std::vector<QPDFObjectHandle> kept;
        const int count = pairs.getArrayNItems();
        for (int i = 0; i + 1 < count; i += 2) {
            QPDFObjectHandle key = pairs.getArrayItem(i);
            QPDFObjectHandle value = pairs.getArrayItem(i + 1);
            if (m_isGone(key, value))
                continue;
            kept.push_back(key);
            kept.push_back(value);
        }
        if (m_changes && int(kept.size()) != count)
            pairs.setArrayFromVector(kept);
        return !kept.empty();
    }

    void setLimits(QPDFObjectHandle node) {
        const auto edge = [this](QPDFObjectHandle from, bool last) {
            QPDFObjectHandle pairs = from.getKey(m_leafKey);
            if (pairs.isArray() && pairs.getArrayNItems() >= 2)
                return pairs.getArrayItem(last ? pairs.getArrayNItems() - 2 : 0);
            QPDFObjectHandle kids = from.getKey("/Kids");
            if (!kids.isArray() || kids.getArrayNItems() == 0)
                return QPDFObjectHandle::newNull();
            QPDFObjectHandle limits =
                PdfValues::entry(kids.getArrayItem(last ? kids.getArrayNItems() - 1 : 0), "/Limits");
            return limits.isArray() && limits.getArrayNItems() == 2 ? limits.getArrayItem(last ? 1 : 0)
                                                                    : QPDFObjectHandle::newNull();
        };
        QPDFObjectHandle first = edge(node, false);
        QPDFObjectHandle last = edge(node, true);
        if (first.isNull() || last.isNull())
            node.removeKey("/Limits");
        else
            node.replaceKey("/Limits", QPDFObjectHandle::newArray({first, last}));
    }

    std::string m_leafKey;
    std::function<bool(QPDFObjectHandle, QPDFObjectHandle)> m_isGone;
    bool m_changes;
    std::set<QPDFObjGen> m_seen;
};

/// Readers look a name up by the limits of the nodes, so neither long leaves nor deep trees are good.
constexpr std::size_t mostInNode = 64;

struct Node {
    QPDFObjectHandle object;
    std::string first;
    std::string last;
};

void setLimits(const Node& node) {
    QPDFObjectHandle(node.object)
        .replaceKey("/Limits", QPDFObjectHandle::newArray(
                                   {QPDFObjectHandle::newString(node.first), QPDFObjectHandle::newString(node.last)}));
}

} // namespace

void NameTree::forEach(QPDFObjectHandle root, const std::string& leafKey,
                       const std::function<void(QPDFObjectHandle, QPDFObjectHandle)>& visit) {
    const auto keepAll = [&visit](QPDFObjectHandle key, QPDFObjectHandle value) {
        visit(key, value);
        return false;
    };
    Walker(leafKey, keepAll, false).walk(root);
}

void NameTree::removeIf(QPDFObjectHandle root, const std::string& leafKey,
                        const std::function<bool(QPDFObjectHandle, QPDFObjectHandle)>& isGone) {
    Walker(leafKey, isGone, true).walk(root);
}

QPDFObjectHandle NameTree::make(const std::map<std::string, QPDFObjectHandle>& pairs, ObjectStore& objects) {
    std::vector<Node> level;
    for (auto next = pairs.begin(); next != pairs.end();) {
        QPDFObjectHandle names = QPDFObjectHandle::newArray();
        Node node{QPDFObjectHandle::newDictionary(), next->first, {}};
        for (std::size_t i = 0; i < mostInNode && next != pairs.end(); ++i, ++next) {
            names.appendItem(QPDFObjectHandle::newString(next->first));
            names.appendItem(next->second);
            node.last = next->first;
        }
        node.object.replaceKey("/Names", names);
        level.push_back(std::move(node));
    }
    while (level.size() > 1) {
        std::vector<Node> above;
        for (std::size_t i = 0; i < level.size(); ++i) {
            setLimits(level[i]);
            if (i % mostInNode == 0) {
                above.push_back({QPDFObjectHandle::newDictionary(), level[i].first, {}});
                above.back().object.replaceKey("/Kids", QPDFObjectHandle::newArray());
            }
            above.back().object.getKey("/Kids").appendItem(objects.add(level[i].object));
            above.back().last = level[i].last;
        }
        level = std::move(above);
    }
    return objects.add(level.front().object);
}
