#pragma once

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

/// Digital signatures (ISO 32000-1, 12.8). One covers the bytes of its file up to the end of the update that brought
/// it, so it holds as long as those bytes stay as they are.
namespace Signatures {

/// True when a field of the file's form is signed, or its author has certified it.
[[nodiscard]] bool areIn(QPDF& pdf);

/// True when the dictionary, of a field or of a widget, belongs to a field for signatures.
[[nodiscard]] bool isField(QPDFObjectHandle dictionary);

} // namespace Signatures
