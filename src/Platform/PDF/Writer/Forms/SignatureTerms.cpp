#include "SignatureTerms.h"

#include "FormTree.h"
#include "ObjectStore.h"
#include "PdfValues.h"
#include "Signatures.h"

#include <algorithm>

SignatureTerms::SignatureTerms(QPDF& pdf) {
    for (const QPDFObjectHandle& signature : Signatures::valuesIn(pdf)) {
        m_areThere = true;
        read(signature);
    }
}

void SignatureTerms::read(QPDFObjectHandle signature) {
    QPDFObjectHandle references = signature.getKey("/Reference");
    if (!references.isArray())
        return;
    for (const QPDFObjectHandle& reference : references.aitems()) {
        QPDFObjectHandle method = PdfValues::entry(reference, "/TransformMethod");
        QPDFObjectHandle parameters = PdfValues::entry(reference, "/TransformParams");
        if (method.isNameAndEquals("/DocMDP")) {
            int permission = filling; // when it isn't told
            PdfValues::entry(parameters, "/P").getValueAsInt(permission);
            m_isCertified = true;
            m_permission = std::min(m_permission, permission);
        } else if (method.isNameAndEquals("/FieldMDP")) {
            Lock lock;
            lock.isOfThose = PdfValues::entry(parameters, "/Action").isNameAndEquals("/Include");
            QPDFObjectHandle names = PdfValues::entry(parameters, "/Fields");
            if (names.isArray() && !PdfValues::entry(parameters, "/Action").isNameAndEquals("/All"))
                for (QPDFObjectHandle name : names.aitems())
                    if (name.isString())
                        lock.names.insert(name.getUTF8Value());
            m_locks.push_back(std::move(lock));
        }
    }
}

/// A name stands for the field of that name and for those below it.
bool SignatureTerms::isLocked(QPDFObjectHandle field) const {
    std::vector<std::string> names; // of the field and all above it, each whole
    std::vector<QPDFObjectHandle> chain = FormTree::chain(field);
    std::reverse(chain.begin(), chain.end());
    for (QPDFObjectHandle part : chain)
        if (QPDFObjectHandle name = part.getKey("/T"); name.isString())
            names.push_back(names.empty() ? name.getUTF8Value() : names.back() + '.' + name.getUTF8Value());
    return std::any_of(m_locks.begin(), m_locks.end(), [&names](const Lock& lock) {
        return lock.isOfThose == std::any_of(names.begin(), names.end(),
                                             [&lock](const std::string& name) { return lock.names.count(name) > 0; });
    });
}

bool SignatureTerms::allow(const UpdateObjects& objects, Extent extent) const {
    if (!m_areThere)
        return true;
    if (m_permission <= noChange || extent == Extent::document)
        return objects.entries().empty();
    for (const auto& [id, entry] : objects.entries()) {
        QPDFObjectHandle object = entry.object;
        if (!object.isDictionary() || entry.bytes)
            continue;
        const bool isField = !FormTree::inherited(object, "/FT").isNull();
        const bool isAnnotation = object.isDictionaryOfType("/Page") || (!isField && object.hasKey("/Rect"));
        if (isAnnotation && m_permission < annotating)
            return false;
        if (isField && (isLocked(object) || (m_isCertified && objects.isNew(id))))
            return false;
    }
    return true;
}
