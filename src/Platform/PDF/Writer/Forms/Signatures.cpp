#include "Signatures.h"

#include "FormTree.h"
#include "PdfValues.h"

#include <set>
#include <vector>

bool Signatures::isField(QPDFObjectHandle dictionary) {
    return FormTree::inherited(dictionary, "/FT").isNameAndEquals("/Sig");
}

bool Signatures::areIn(QPDF& pdf) {
    QPDFObjectHandle root = pdf.getRoot();
    if (PdfValues::entry(root.getKey("/Perms"), "/DocMDP").isDictionary())
        return true;
    std::set<QPDFObjGen> seen;
    std::vector<QPDFObjectHandle> todo{PdfValues::entry(root.getKey("/AcroForm"), "/Fields")};
    while (!todo.empty()) {
        QPDFObjectHandle fields = todo.back();
        todo.pop_back();
        if (!fields.isArray())
            continue;
        for (QPDFObjectHandle field : fields.aitems()) {
            if (!field.isDictionary() || (field.isIndirect() && !seen.insert(field.getObjGen()).second))
                continue;
            if (isField(field) && FormTree::inherited(field, "/V").isDictionary())
                return true;
            if (field.isIndirect()) // one that stands in its parent has no business with kids, and may go on for ever
                todo.push_back(field.getKey("/Kids"));
        }
    }
    return false;
}
