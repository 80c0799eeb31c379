#include "FormTree.h"

#include "PdfValues.h"

#include <set>

namespace {

constexpr int deepest = 64;

using Visit = std::function<void(QPDFObjectHandle, const QString&)>;

void visitAll(QPDFObjectHandle list, const QString& above, const Visit& visit, std::set<QPDFObjGen>& seen, int depth) {
    if (!list.isArray() || depth > deepest)
        return;
    for (QPDFObjectHandle field : list.aitems()) {
        if (!field.isDictionary() || (field.isIndirect() && !seen.insert(field.getObjGen()).second))
            continue;
        const QString own = PdfValues::toText(field.getKey("/T"));
        const QString name = above.isEmpty() || own.isEmpty() ? above + own : above + QLatin1Char('.') + own;
        visit(field, name);
        visitAll(field.getKey("/Kids"), name, visit, seen, depth + 1);
    }
}

} // namespace

void FormTree::forEach(QPDFObjectHandle form, const Visit& visit) {
    std::set<QPDFObjGen> seen;
    visitAll(PdfValues::entry(form, "/Fields"), {}, visit, seen, 0);
}

std::vector<QPDFObjectHandle> FormTree::chain(QPDFObjectHandle dictionary) {
    std::vector<QPDFObjectHandle> all;
    for (int depth = 0; dictionary.isDictionary() && depth < deepest; ++depth) {
        all.push_back(dictionary);
        dictionary = dictionary.getKey("/Parent");
    }
    return all;
}

QPDFObjectHandle FormTree::fieldOf(QPDFObjectHandle widget) {
    for (QPDFObjectHandle& dictionary : chain(widget))
        if (dictionary.hasKey("/T"))
            return dictionary;
    return widget;
}

QPDFObjectHandle FormTree::inherited(QPDFObjectHandle dictionary, const std::string& key) {
    for (QPDFObjectHandle& above : chain(dictionary))
        if (above.hasKey(key))
            return above.getKey(key);
    return QPDFObjectHandle::newNull();
}

std::vector<QPDFObjectHandle> FormTree::widgets(QPDFObjectHandle field) {
    std::vector<QPDFObjectHandle> found;
    if (field.getKey("/Subtype").isNameAndEquals("/Widget"))
        found.push_back(field);
    QPDFObjectHandle kids = field.getKey("/Kids");
    if (kids.isArray())
        for (QPDFObjectHandle kid : kids.aitems())
            if (kid.isDictionary() && !kid.hasKey("/T"))
                found.push_back(kid);
    return found;
}

std::string FormTree::onState(QPDFObjectHandle button) {
    QPDFObjectHandle looks = PdfValues::entry(button.getKey("/AP"), "/N");
    if (looks.isDictionary())
        for (const std::string& state : looks.getKeys())
            if (state != "/Off")
                return state;
    QPDFObjectHandle present = button.getKey("/AS");
    return present.isName() && !present.isNameAndEquals("/Off") ? present.getName() : "/Yes";
}
