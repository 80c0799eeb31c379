#include "ObjectCopier.h"

#include "ObjectSyntax.h"
#include "PackedLinks.h"

namespace {

/// An annotation, or a field of the form that may be one at the same time.
bool isAnnotationOrField(QPDFObjectHandle object) {
    if (!object.isDictionary())
        return false;
    if (object.hasKey("/FT") || (object.getKey("/Subtype").isName() && object.getKey("/Rect").isArray()))
        return true;
    return object.getKey("/T").isString() &&
           (object.getKey("/Kids").isArray() || object.getKey("/Parent").isDictionary() || object.hasKey("/V"));
}

} // namespace

bool ObjectCopier::isPageObject(QPDFObjectHandle object) {
    if (!object.isDictionary())
        return false;
    QPDFObjectHandle type = object.getKey("/Type");
    if (type.isName() && (type.getName() == "/Page" || type.getName() == "/Pages" || type.getName() == "/Template"))
        return true;
    // The window of a note has a parent and contents too, which are a text.
    QPDFObjectHandle contents = object.getKey("/Contents");
    return !type.isNameAndEquals("/Annot") && object.getKey("/Parent").isDictionary() &&
           (object.hasKey("/MediaBox") || contents.isStream() || contents.isArray() ||
            (object.hasKey("/Kids") && object.hasKey("/Count")));
}

void ObjectCopier::setReplacement(QPDFObjectHandle foreign, QPDFObjectHandle replacement) {
    m_copies[foreign.getObjGen()] = replacement;
}

void ObjectCopier::expect(QPDFObjectHandle foreign) {
    if (!foreign.isIndirect() || hasReplacement(foreign))
        return;
    m_copies[foreign.getObjGen()] = m_target.reserve();
    m_expected.insert(foreign.getObjGen());
}

QPDFObjectHandle ObjectCopier::reserveFor(QPDFObjectHandle foreign) {
    if (foreign.isIndirect() && m_expected.erase(foreign.getObjGen()) > 0)
        return m_copies[foreign.getObjGen()];
    QPDFObjectHandle copy = m_target.reserve();
    if (foreign.isIndirect())
        m_copies[foreign.getObjGen()] = copy;
    return copy;
}

bool ObjectCopier::isLeftOut(QPDFObjectHandle foreign) const {
    if (foreign.isNull() || (m_links && m_links->find(foreign.getObjGen())) || isPageObject(foreign) ||
        isAnnotationOrField(foreign))
        return true;
    const bool mayBePage = foreign.isDictionary() && (foreign.hasKey("/Contents") || foreign.hasKey("/MediaBox"));
    return mayBePage && m_isPage && m_isPage(foreign.getObjectID());
}

QPDFObjectHandle ObjectCopier::copy(QPDFObjectHandle foreign) {
    QPDFObjectHandle result = translate(foreign);
    finish();
    return result;
}

void ObjectCopier::copyInto(QPDFObjectHandle copy, QPDFObjectHandle dictionary, QPDF& file) {
    if (m_target.keepsTexts())
        fillText(copy, dictionary, file);
    else
        m_target.fill(copy, translateDictionary(dictionary));
    finish();
}

void ObjectCopier::copyText(QPDFObjectHandle copy, const std::string& dictionary, QPDF& file) {
    m_target.fillText(
        copy, ObjectSyntax::withReferences(dictionary, [&](QPDFObjGen id) { return reference(file.getObject(id)); }));
    finish();
}

void ObjectCopier::finish() {
    while (!m_pending.empty()) {
        Pending next = m_pending.front();
        m_pending.pop_front();
        if (next.foreign.isStream()) {
            QPDFObjectHandle dictionary = translateDictionary(next.foreign.getDict());
            dictionary.removeKey("/Length");
            m_target.fillStream(next.copy, dictionary, next.foreign);
        } else if (m_target.keepsTexts()) {
            fillText(next.copy, next.foreign, *next.foreign.getOwningQPDF());
        } else if (next.foreign.isDictionary()) {
            m_target.fill(next.copy, translateDictionary(next.foreign));
        } else if (next.foreign.isArray()) {
            QPDFObjectHandle array = QPDFObjectHandle::newArray();
            for (const QPDFObjectHandle& item : next.foreign.aitems())
                array.appendItem(translate(item));
            m_target.fill(next.copy, array);
        } else {
            m_target.fill(next.copy, next.foreign.shallowCopy());
        }
    }
}

void ObjectCopier::fillText(QPDFObjectHandle copy, QPDFObjectHandle foreign, QPDF& file) {
    const std::string text = foreign.unparseResolved();
    const bool leavesOut = text.find("/StructParent") != std::string::npos;
    m_target.fillText(copy, leavesOut ? translate(foreign.shallowCopy()).unparse()
                                      : ObjectSyntax::withReferences(
                                            text, [&](QPDFObjGen id) { return reference(file.getObject(id)); }));
}

QPDFObjectHandle ObjectCopier::reference(QPDFObjectHandle foreign) {
    const auto known = m_copies.find(foreign.getObjGen());
    if (known != m_copies.end())
        return known->second;
    if (isLeftOut(foreign))
        return m_copies[foreign.getObjGen()] = QPDFObjectHandle::newNull();
    if (m_same && foreign.isStream())
        return m_copies[foreign.getObjGen()] = m_same->getObject(foreign.getObjGen());
    QPDFObjectHandle copy = foreign.isStream() ? m_target.reserveStream() : m_target.reserve();
    m_copies[foreign.getObjGen()] = copy;
    m_pending.push_back({foreign, copy});
    return copy;
}

QPDFObjectHandle ObjectCopier::translate(QPDFObjectHandle value) {
    if (value.isIndirect())
        return reference(value);
    // The parser limits how deep direct values nest.
    if (value.isDictionary())
        return translateDictionary(value);
    if (value.isArray()) {
        QPDFObjectHandle array = QPDFObjectHandle::newArray();
        for (const QPDFObjectHandle& item : value.aitems())
            array.appendItem(translate(item));
        return array;
    }
    return value.shallowCopy();
}

QPDFObjectHandle ObjectCopier::translateDictionary(QPDFObjectHandle dictionary) {
    QPDFObjectHandle copy = QPDFObjectHandle::newDictionary();
    for (const auto& [key, value] : dictionary.ditems()) {
        if (key != "/StructParent" && key != "/StructParents")
            copy.replaceKey(key, translate(value));
    }
    return copy;
}
