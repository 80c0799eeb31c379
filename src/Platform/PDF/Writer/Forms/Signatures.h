#pragma once

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <vector>

class ObjectStore;

/// Digital signatures (ISO 32000-1, 12.8). One covers the bytes of its file up to the end of the update that brought
/// it, so it holds as long as those bytes stay as they are.
namespace Signatures {

/// The signatures of the fields of the file's form that are signed, and of the author who has certified it.
[[nodiscard]] std::vector<QPDFObjectHandle> valuesIn(QPDF& pdf);

/// Leaves the form's fields as they look but unsigned, and the file without the rights that a signature grants and what
/// proves signatures: for one that is written anew, where no signature can hold.
void removeFrom(ObjectStore& objects);

/// The same for the fields that a page shows, of which the form need not know.
void removeFromPage(QPDFObjectHandle page);

/// True when the dictionary, of a field or of a widget, belongs to a field for signatures.
[[nodiscard]] bool isField(QPDFObjectHandle dictionary);

} // namespace Signatures
