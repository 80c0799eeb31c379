#include "PageMover.h"

#include "PageTree.h"
#include "PdfValues.h"
#include "SourceFile.h"

#include <algorithm>
#include <set>
#include <string>

namespace {

constexpr int deepestPageTree = 256;
/// Past this a new tree is less work.
constexpr std::size_t mostMoves = 2000;

/// True when nothing but the tree's own shape and measures of pages stands in the nodes above the page: resources, or
/// what other programs keep there, could be of this page alone.
bool inheritsOnlyMeasures(QPDFObjectHandle page) {
    static const std::set<std::string> harmless{"/Type",     "/Parent",  "/Kids",  "/Count",
                                                "/MediaBox", "/CropBox", "/Rotate"};
    QPDFObjectHandle node = PdfValues::entry(page, "/Parent");
    for (int depth = 0; node.isDictionary() && depth < deepestPageTree; ++depth) {
        for (const std::string& key : node.getKeys())
            if (harmless.count(key) == 0)
                return false;
        node = node.getKey("/Parent");
    }
    return node.isNull();
}

/// True for the places of one longest run of rising numbers: those pages stay where they are.
std::vector<bool> staying(const std::vector<int>& order) {
    std::vector<std::size_t> tails; // places; the run of length i + 1 with the lowest end
    std::vector<std::ptrdiff_t> before(order.size(), -1);
    for (std::size_t i = 0; i < order.size(); ++i) {
        const auto at = std::lower_bound(tails.begin(), tails.end(), order[i],
                                         [&order](std::size_t place, int number) { return order[place] < number; });
        if (at != tails.begin())
            before[i] = std::ptrdiff_t(*(at - 1));
        if (at == tails.end())
            tails.push_back(i);
        else
            *at = i;
    }
    std::vector<bool> stays(order.size());
    for (std::ptrdiff_t i = tails.empty() ? -1 : std::ptrdiff_t(tails.back()); i >= 0; i = before[std::size_t(i)])
        stays[std::size_t(i)] = true;
    return stays;
}

class Mover {
public:
    explicit Mover(ObjectStore& objects) : m_objects(objects) {}

    bool arrange(const std::vector<int>& order, SourceFile& file) {
        const std::vector<bool> stays = staying(order);
        if (std::size_t(std::count(stays.begin(), stays.end(), false)) > mostMoves)
            return false;
        for (std::size_t i = 0; i < order.size(); ++i)
            if (!stays[i] && !release(file.page(order[i])))
                return false;
        const auto firstStaying = std::find(stays.begin(), stays.end(), true) - stays.begin();
        QPDFObjectHandle anchor = file.page(order[std::size_t(firstStaying)]);
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (stays[i])
                continue; // and isn't even looked up: that would read all pages of the file
            // Those before the first page that stays go before it, in their order.
            const bool before = std::ptrdiff_t(i) < firstStaying;
            if (!putBeside(file.page(order[i]), before ? anchor : file.page(order[i - 1]), !before))
                return false;
        }
        return true;
    }

    /// Takes the page out of its node, and nodes that become empty out of theirs.
    bool unlink(QPDFObjectHandle page) {
        QPDFObjectHandle kid = page;
        QPDFObjectHandle node = PdfValues::entry(page, "/Parent");
        if (!page.isIndirect() || !node.isDictionary() || !node.isIndirect())
            return false;
        for (int depth = 0; depth < deepestPageTree; ++depth) {
            QPDFObjectHandle kids = node.getKey("/Kids");
            const int place = placeOf(kid, kids);
            if (place < 0 || (depth == 0 && !addToCounts(node, -1)))
                return false;
            kids.eraseItem(place);
            noteKids(node);
            QPDFObjectHandle above = node.getKey("/Parent");
            if (kids.getArrayNItems() > 0 || !above.isDictionary())
                return true;
            // An empty node puzzles readers.
            kid = node;
            node = above;
        }
        return false;
    }

private:
    /// The place of a kid in its node; -1 unless it stands there exactly once.
    static int placeOf(QPDFObjectHandle kid, QPDFObjectHandle kids) {
        int found = -1;
        for (int i = 0; kids.isArray() && i < kids.getArrayNItems(); ++i) {
            QPDFObjectHandle item = kids.getArrayItem(i);
            if (!item.isIndirect() || item.getObjGen() != kid.getObjGen())
                continue;
            if (found >= 0)
                return -1;
            found = i;
        }
        return found;
    }

    /// Adds to the count of the node and of those above it. False for a node without a count.
    bool addToCounts(QPDFObjectHandle node, int pages) {
        for (int depth = 0; node.isDictionary() && node.isIndirect() && depth < deepestPageTree; ++depth) {
            long long count = 0;
            if (!node.getKey("/Count").getValueAsInt(count))
                return false;
            m_objects.set(node, "/Count", QPDFObjectHandle::newInteger(count + pages));
            node = node.getKey("/Parent");
        }
        return node.isNull();
    }

    void noteKids(QPDFObjectHandle node) {
        QPDFObjectHandle kids = node.getKey("/Kids");
        m_objects.noteChange(kids.isIndirect() ? kids : node);
    }

    /// Takes the page out so that it may stand anywhere.
    bool release(QPDFObjectHandle page) {
        if (!page.isDictionary() || !page.isIndirect())
            return false;
        PageTree::keepInherited(page, m_objects);
        // What it doesn't have it must not find in its new place.
        const auto setWhereMissing = [&](const char* key, QPDFObjectHandle value) {
            if (!page.hasKey(key))
                m_objects.set(page, key, value);
        };
        setWhereMissing("/Resources", QPDFObjectHandle::newDictionary());
        setWhereMissing("/Rotate", QPDFObjectHandle::newInteger(0));
        setWhereMissing("/MediaBox", PdfValues::numbers({0, 0, 612, 792}));
        setWhereMissing("/CropBox", page.getKey("/MediaBox").shallowCopy());
        return unlink(page);
    }

    bool putBeside(QPDFObjectHandle page, QPDFObjectHandle neighbour, bool after) {
        QPDFObjectHandle node = PdfValues::entry(neighbour, "/Parent");
        if (!node.isDictionary() || !node.isIndirect())
            return false;
        QPDFObjectHandle kids = node.getKey("/Kids");
        const int place = placeOf(neighbour, kids);
        if (place < 0 || !addToCounts(node, 1))
            return false;
        kids.insertItem(after ? place + 1 : place, page);
        noteKids(node);
        m_objects.set(page, "/Parent", node);
        return true;
    }

    ObjectStore& m_objects;
};

} // namespace

bool PageMover::arrange(const std::vector<int>& order, SourceFile& file, ObjectStore& objects) {
    return Mover(objects).arrange(order, file);
}

bool PageMover::remove(const std::vector<QPDFObjectHandle>& pages, ObjectStore& objects) {
    if (pages.size() > mostMoves || !std::all_of(pages.begin(), pages.end(), inheritsOnlyMeasures))
        return false;
    Mover mover(objects);
    return std::all_of(pages.begin(), pages.end(), [&mover](QPDFObjectHandle page) { return mover.unlink(page); });
}
