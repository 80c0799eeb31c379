#include "FieldImporter.h"

#include "FormFields.h"
#include "FormTree.h"
#include "PdfValues.h"
#include "Signatures.h"

#include <utility>

void FieldImporter::adopt(QPDFObjectHandle widget, QPDFObjectHandle copy, ObjectCopier& copier) {
    const std::vector<QPDFObjectHandle> chain = FormTree::chain(widget);
    // It signed the file that it comes from, not this one.
    if (Signatures::isField(widget))
        copy.removeKey("/V");
    if (chain.size() < 2) {
        addToForm(widget, copy, copier);
        return;
    }
    QPDFObjectHandle parent = fieldCopy(chain, 1, copier);
    copy.replaceKey("/Parent", parent);
    parent.getKey("/Kids").appendItem(copy);
    m_objects.noteChange(parent);
}

QPDFObjectHandle FieldImporter::fieldCopy(const std::vector<QPDFObjectHandle>& chain, std::size_t place,
                                          ObjectCopier& copier) {
    QPDFObjectHandle original = chain[place];
    std::map<QPDFObjGen, QPDFObjectHandle>& fields = m_origins[&copier].fields;
    const auto known = fields.find(original.getObjGen());
    if (known != fields.end() && original.isIndirect())
        return known->second;
    QPDFObjectHandle value = original.shallowCopy();
    value.removeKey("/Parent");
    if (Signatures::isField(original))
        value.removeKey("/V");
    value.replaceKey("/Kids", QPDFObjectHandle::newArray());
    QPDFObjectHandle copy = copier.reserveFor(original);
    m_objects.fill(copy, copier.copy(value));
    fields[original.getObjGen()] = copy;
    if (place + 1 < chain.size()) {
        QPDFObjectHandle parent = fieldCopy(chain, place + 1, copier);
        copy.replaceKey("/Parent", parent);
        parent.getKey("/Kids").appendItem(copy);
        m_objects.noteChange(parent);
    } else {
        addToForm(original, copy, copier);
    }
    return copy;
}

void FieldImporter::addToForm(QPDFObjectHandle original, QPDFObjectHandle copy, ObjectCopier& copier) {
    QPDF* file = original.getOwningQPDF();
    QPDFObjectHandle form = file ? file->getRoot().getKey("/AcroForm") : QPDFObjectHandle::newNull();
    if (form.isDictionary()) {
        // What the fields took from their form they now carry themselves.
        for (const char* key : {"/DA", "/Q"})
            if (!copy.hasKey(key) && form.hasKey(key))
                copy.replaceKey(key, copier.copy(form.getKey(key)));
        QPDFObjectHandle fonts = PdfValues::entry(form.getKey("/DR"), "/Font");
        const bool isFirst = !std::exchange(m_origins[&copier].resourcesCopied, true);
        if (isFirst && fonts.isDictionary())
            m_form.addFonts(copier.copy(fonts.isIndirect() ? fonts.shallowCopy() : fonts));
    }
    m_form.addTopField(copy, PdfValues::toText(original.getKey("/T")));
}
