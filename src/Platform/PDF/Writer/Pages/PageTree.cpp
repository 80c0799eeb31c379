#include "PageTree.h"

#include "PdfValues.h"
#include "SourceFile.h"

namespace {

/// Readers walk the nodes one entry after the other, so neither long lists nor deep trees are good.
constexpr std::size_t mostKids = 64;

struct Node {
    QPDFObjectHandle object;
    long long pageCount = 1;
};

void fillNode(QPDFObjectHandle object, const std::vector<Node>& kids) {
    QPDFObjectHandle list = QPDFObjectHandle::newArray();
    long long count = 0;
    for (const Node& kid : kids) {
        list.appendItem(kid.object);
        QPDFObjectHandle(kid.object).replaceKey("/Parent", object);
        count += kid.pageCount;
    }
    object.replaceKey("/Type", PdfValues::name("Pages"));
    object.replaceKey("/Kids", list);
    object.replaceKey("/Count", QPDFObjectHandle::newInteger(count));
}

} // namespace

void PageTree::keepInherited(QPDFObjectHandle page, ObjectStore& objects) {
    for (const char* key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"}) {
        QPDFObjectHandle owner = SourceFile::inheritedFrom(page, key);
        if (owner.isNull() || page.hasKey(key))
            continue;
        QPDFObjectHandle value = owner.getKey(key);
        if (value.isDictionary() && owner.isIndirect())
            value = objects.dictionaryAt(owner, key);
        objects.set(page, key, value);
    }
}

void PageTree::write(const std::vector<QPDFObjectHandle>& pages, ObjectStore& objects) {
    std::vector<Node> level;
    for (const QPDFObjectHandle& page : pages)
        level.push_back({page, 1});
    while (level.size() > mostKids) {
        std::vector<Node> above;
        for (std::size_t first = 0; first < level.size(); first += mostKids) {
            const std::size_t last = std::min(first + mostKids, level.size());
            const std::vector<Node> kids(level.begin() + std::ptrdiff_t(first), level.begin() + std::ptrdiff_t(last));
            Node node{objects.add(QPDFObjectHandle::newDictionary()), 0};
            fillNode(node.object, kids);
            for (const Node& kid : kids)
                node.pageCount += kid.pageCount;
            above.push_back(node);
        }
        level = std::move(above);
    }
    QPDFObjectHandle root = objects.add(QPDFObjectHandle::newDictionary());
    fillNode(root, level);
    objects.set(objects.root(), "/Pages", root);
}
