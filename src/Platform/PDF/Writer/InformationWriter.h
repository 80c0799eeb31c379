#pragma once

#include "ObjectStore.h"

struct DocumentContents;

/// Writes the document's attributes (ISO 32000-1, 14.3.3).
namespace InformationWriter {

/// Makes the information dictionary what changed attributes say: keys that they lack go, except for values that are no
/// text. Texts that are the same already are left byte for byte. The date of modification becomes that of the contents.
/// The file's metadata stream, which other programs prefer to the dictionary, follows for what changed. A trailer
/// without a dictionary gets one.
void write(const DocumentContents& contents, ObjectStore& objects);

} // namespace InformationWriter
