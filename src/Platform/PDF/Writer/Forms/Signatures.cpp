#include "Signatures.h"

#include "FormTree.h"
#include "ObjectStore.h"
#include "PdfValues.h"

#include <set>

namespace {

/// The fields of the file's form that are signed.
std::vector<QPDFObjectHandle> signedFields(QPDF& pdf) {
    std::vector<QPDFObjectHandle> found;
    std::set<QPDFObjGen> seen;
    std::vector<QPDFObjectHandle> todo{PdfValues::entry(pdf.getRoot().getKey("/AcroForm"), "/Fields")};
    while (!todo.empty()) {
        QPDFObjectHandle fields = todo.back();
        todo.pop_back();
        if (!fields.isArray())
            continue;
        for (QPDFObjectHandle field : fields.aitems()) {
            if (!field.isDictionary() || (field.isIndirect() && !seen.insert(field.getObjGen()).second))
                continue;
            if (Signatures::isField(field) && field.getKey("/V").isDictionary())
                found.push_back(field);
            if (field.isIndirect()) // one that stands in its parent has no business with kids, and may go on for ever
                todo.push_back(field.getKey("/Kids"));
        }
    }
    return found;
}

} // namespace

bool Signatures::isField(QPDFObjectHandle dictionary) {
    return FormTree::inherited(dictionary, "/FT").isNameAndEquals("/Sig");
}

std::vector<QPDFObjectHandle> Signatures::valuesIn(QPDF& pdf) {
    std::vector<QPDFObjectHandle> values;
    QPDFObjectHandle certification = PdfValues::entry(pdf.getRoot().getKey("/Perms"), "/DocMDP");
    if (certification.isDictionary())
        values.push_back(certification);
    for (QPDFObjectHandle field : signedFields(pdf))
        values.push_back(field.getKey("/V"));
    return values;
}

void Signatures::removeFrom(ObjectStore& objects) {
    for (const char* key : {"/Perms", "/DSS"})
        objects.remove(objects.root(), key);
    const std::vector<QPDFObjectHandle> fields = signedFields(objects.pdf());
    for (QPDFObjectHandle field : fields)
        field.removeKey("/V");
    if (!fields.empty())
        objects.root().getKey("/AcroForm").removeKey("/SigFlags");
}

void Signatures::removeFromPage(QPDFObjectHandle page) {
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray())
        return;
    for (QPDFObjectHandle annotation : annotations.aitems())
        if (annotation.isDictionary() && isField(annotation))
            for (QPDFObjectHandle field : FormTree::chain(annotation))
                field.removeKey("/V");
}
