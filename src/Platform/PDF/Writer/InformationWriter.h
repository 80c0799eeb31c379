#pragma once

#include "ObjectStore.h"

#include <QVariantMap>

/// Writes the document's attributes (ISO 32000-1, 14.3.3).
namespace InformationWriter {

/// Makes the information dictionary what the attributes say: keys that they lack go, except for values that are no
/// text. Texts that are the same already are left byte for byte. The file's metadata stream, which other programs
/// prefer to the dictionary, follows for the attributes that changed. A trailer without a dictionary gets one.
void write(const QVariantMap& attributes, ObjectStore& objects);

} // namespace InformationWriter
