#pragma once

#include "ObjectStore.h"

#include <deque>
#include <map>

/// Copies objects of another file with all that they refer to, each object once. The other file must stay open until
/// the new one is written.
///
/// Pages are never followed: a reference to one becomes null unless `setReplacement` says otherwise, so what is copied
/// brings nothing of the pages that stay behind. Links into the other file's structure tree are left out.
class ObjectCopier {
public:
    explicit ObjectCopier(ObjectStore& target) : m_target(target) {}

    /// What stands for a foreign object wherever it is referred to; a null object leaves it out.
    void setReplacement(QPDFObjectHandle foreign, QPDFObjectHandle replacement);

    [[nodiscard]] bool hasReplacement(QPDFObjectHandle foreign) const {
        const auto known = m_copies.find(foreign.getObjGen());
        return known != m_copies.end() && !known->second.isDirectNull();
    }

    /// For a second opening of the file that is being changed: its streams are referred to and not copied. That file
    /// must be the target's own.
    void shareStreamsWith(QPDF& same) { m_same = &same; }

    /// The object's copy: a reference to it when the object is an indirect one, and otherwise its value.
    [[nodiscard]] QPDFObjectHandle copy(QPDFObjectHandle foreign);

    /// True for a page, a template page or a node of the page tree, also when its type is missing.
    [[nodiscard]] static bool isPageObject(QPDFObjectHandle object);

private:
    struct Pending {
        QPDFObjectHandle foreign;
        QPDFObjectHandle copy;
    };
    QPDFObjectHandle translate(QPDFObjectHandle value);
    QPDFObjectHandle translateDictionary(QPDFObjectHandle dictionary);
    QPDFObjectHandle reference(QPDFObjectHandle foreign);

    ObjectStore& m_target;
    QPDF* m_same = nullptr;
    std::map<QPDFObjGen, QPDFObjectHandle> m_copies;
    std::deque<Pending> m_pending; // a queue, since a chain of references may be longer than the stack is deep
};
