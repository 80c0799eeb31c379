#pragma once

#include "ObjectCopier.h"
#include "ObjectStore.h"

#include <map>

class FormFields;

/// Brings the fields of other files' forms over for widgets that were copied from there. A field comes without those of
/// its widgets that stay behind; widgets of one field share one field here as well.
class FieldImporter {
public:
    FieldImporter(ObjectStore& objects, FormFields& form) : m_objects(objects), m_form(form) {}

    /// `copy` is the indirect copy of `widget`, without Parent; `copier` is the one for the file of `widget`, always
    /// the same.
    void adopt(QPDFObjectHandle widget, QPDFObjectHandle copy, ObjectCopier& copier);

private:
    /// What has come from one file.
    struct Origin {
        std::map<QPDFObjGen, QPDFObjectHandle> fields; ///< copies by the number of the original
        bool resourcesCopied = false;
    };
    QPDFObjectHandle fieldCopy(const std::vector<QPDFObjectHandle>& chain, std::size_t place, ObjectCopier& copier);
    void addToForm(QPDFObjectHandle original, QPDFObjectHandle copy, ObjectCopier& copier);

    ObjectStore& m_objects;
    FormFields& m_form;
    std::map<const ObjectCopier*, Origin> m_origins;
};
