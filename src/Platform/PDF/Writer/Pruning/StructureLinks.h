#pragma once

#include "ObjectStore.h"

/// The structure tree's references to annotations (ISO 32000-1, 14.7.4.3).
namespace StructureLinks {

/// Takes an annotation that goes out of the structure element that refers to it, and of the texts that stand for that
/// element when it is left without content.
void drop(QPDFObjectHandle annotation, ObjectStore& objects);

} // namespace StructureLinks
