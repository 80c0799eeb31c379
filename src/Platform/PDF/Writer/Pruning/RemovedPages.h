#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QString>

#include <map>
#include <set>
#include <vector>

/// Pages of a file that are no longer in its page tree, and what belongs to them alone. Only files that are rewritten
/// as a whole are pruned: then an object that nothing refers to is gone.
struct RemovedPages {
    std::set<QPDFObjGen> pages;
    std::set<QPDFObjGen> annotations;                ///< apart from those that a page which stays has too
    std::set<QPDFObjGen> fields;                     ///< that only they showed; known once the form is pruned
    std::set<QString> fieldNames;                    ///< the full names of these
    std::map<QPDFObjGen, QPDFObjectHandle> replaced; ///< of the pages those with another in their place, and that one
    std::vector<QPDFObjectHandle> removed;           ///< the page objects
    std::vector<QPDFObjectHandle> remaining;         ///< pages of the tree, those brought in too

    RemovedPages(std::vector<QPDFObjectHandle> gone, std::vector<QPDFObjectHandle> kept);

    [[nodiscard]] bool hasPage(QPDFObjectHandle object) const {
        return object.isIndirect() && pages.count(object.getObjGen()) > 0;
    }
    /// The page that what led to a removed one shall lead to; null for none.
    [[nodiscard]] QPDFObjectHandle replacement(QPDFObjectHandle page) const {
        const auto found = replaced.find(page.getObjGen());
        return found == replaced.end() || !page.isIndirect() ? QPDFObjectHandle::newNull() : found->second;
    }
    /// For what an action names a field or an annotation by.
    [[nodiscard]] bool hasField(QPDFObjectHandle named) const;
    [[nodiscard]] bool hasAnnotation(QPDFObjectHandle object) const {
        return object.isIndirect() && annotations.count(object.getObjGen()) > 0;
    }
};
