#pragma once

#include "ObjectStore.h"

#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>

/// Copies objects of another file with all that they refer to, each object once. The other file must stay open until
/// the new one is written.
///
/// Pages, annotations and form fields are never followed: a reference to one becomes null unless `setReplacement` or
/// `expect` say otherwise, so what is copied brings nothing of the pages that stay behind. Links into the other file's
/// structure tree are left out.
class ObjectCopier {
public:
    explicit ObjectCopier(ObjectStore& target) : m_target(target) {}

    /// What stands for a foreign object wherever it is referred to; a null object leaves it out.
    void setReplacement(QPDFObjectHandle foreign, QPDFObjectHandle replacement);

    /// Announces an annotation or a field that is going to be brought over, so that others may refer to it before.
    void expect(QPDFObjectHandle foreign);
    /// An empty object for the copy of an annotation or a field: the one that was announced, once.
    [[nodiscard]] QPDFObjectHandle reserveFor(QPDFObjectHandle foreign);

    /// Tells for an object's number whether it is a page, for those that don't look like one.
    void setPageTest(std::function<bool(int number)> isPage) { m_isPage = std::move(isPage); }

    /// Those of the other file that are texts.
    void setLinks(const PackedLinks& links) { m_links = &links; }

    [[nodiscard]] bool hasReplacement(QPDFObjectHandle foreign) const {
        const auto known = m_copies.find(foreign.getObjGen());
        return known != m_copies.end() && !known->second.isDirectNull();
    }

    /// For a second opening of the file that is being changed: its streams are referred to and not copied. That file
    /// must be the target's own.
    void shareStreamsWith(QPDF& same) { m_same = &same; }
    /// The other opening of the same file, or null.
    [[nodiscard]] QPDF* same() const { return m_same; }

    /// What stands for a foreign object as far as it is known; null for nothing.
    [[nodiscard]] QPDFObjectHandle replacement(QPDFObjectHandle foreign) const {
        const auto known = m_copies.find(foreign.getObjGen());
        return known == m_copies.end() ? QPDFObjectHandle::newNull() : known->second;
    }

    /// The object's copy: a reference to it when the object is an indirect one, and otherwise its value.
    [[nodiscard]] QPDFObjectHandle copy(QPDFObjectHandle foreign);

    /// Fills `copy`, an object that was reserved for it, with the copy of a dictionary of `file`, the other file.
    void copyInto(QPDFObjectHandle copy, QPDFObjectHandle dictionary, QPDF& file);

    /// The same for a dictionary that is a text of that file.
    void copyText(QPDFObjectHandle copy, const std::string& dictionary, QPDF& file);

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
    void finish();
    void fillText(QPDFObjectHandle copy, QPDFObjectHandle foreign, QPDF& file);
    [[nodiscard]] bool isLeftOut(QPDFObjectHandle foreign) const;

    ObjectStore& m_target;
    QPDF* m_same = nullptr;
    const PackedLinks* m_links = nullptr;
    std::map<QPDFObjGen, QPDFObjectHandle> m_copies;
    std::set<QPDFObjGen> m_expected; // those of the copies that are still empty
    std::function<bool(int)> m_isPage;
    std::deque<Pending> m_pending; // a queue, since a chain of references may be longer than the stack is deep
};
