#pragma once

#include "ImportedScripts.h"
#include "ObjectCopier.h"
#include "ObjectStore.h"

#include <QString>

#include <map>
#include <set>
#include <vector>

class FormFields;

/// Brings the fields of other files' forms over for widgets that were copied from there. A field comes without those of
/// its widgets that stay behind; widgets of one field share one field here as well.
class FieldImporter {
public:
    FieldImporter(ObjectStore& objects, FormFields& form) : m_objects(objects), m_form(form) {}

    /// `copy` is the indirect copy of `widget`, without Parent; `copier` is the one for the file of `widget`, always
    /// the same.
    void adopt(QPDFObjectHandle widget, QPDFObjectHandle copy, ObjectCopier& copier);

    /// To be called when all have come. Leaves out scripts that name fields which have another name here, aren't here,
    /// or are others here, and adds the fields that calculate to the form's order of calculation.
    void finish();

    /// The scripts of the whole file that come along with its fields, once all is finished.
    [[nodiscard]] const std::vector<ImportedScripts::Script>& scriptsOf(const ObjectCopier& copier) const;

private:
    struct Field {
        QPDFObjectHandle original;
        QPDFObjectHandle copy;
    };
    /// What has come from one file.
    struct Origin {
        std::map<QPDFObjGen, QPDFObjectHandle> fields; ///< copies by the number of the original
        QPDF* file = nullptr;                          ///< null until a field has come
        QPDFObjectHandle form;                         ///< not initialized until then
        std::vector<Field> all = {};                   ///< fields and widgets
        std::set<QPDFObjGen> came = {};
        std::set<QPDFObjGen> renamed = {}; ///< of the fields at the top
        std::vector<ImportedScripts::Script> scripts = {};
    };
    QPDFObjectHandle fieldCopy(const std::vector<QPDFObjectHandle>& chain, std::size_t place, ObjectCopier& copier);
    void addToForm(QPDFObjectHandle original, QPDFObjectHandle copy, ObjectCopier& copier);
    void bringForm(Origin& origin, QPDFObjectHandle original, ObjectCopier& copier);
    static std::map<QString, bool> namesThatStay(const Origin& origin);
    void finish(Origin& origin, const std::set<QString>& namesHere, ImportedScripts& scripts);

    ObjectStore& m_objects;
    FormFields& m_form;
    std::map<const ObjectCopier*, Origin> m_origins;
};
