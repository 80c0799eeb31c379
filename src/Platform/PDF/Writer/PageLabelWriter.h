#pragma once

#include "ObjectStore.h"

struct DocumentContents;

/// Writes what pages are called (ISO 32000-1, 12.4.2), which follows them wherever they go.
namespace PageLabelWriter {

/// Gives each page the label that it has in its own source. Once one of them has any, pages of files without are called
/// by their number in the new file. Nothing changes where the pages stand as in their source.
void write(const DocumentContents& contents, ObjectStore& objects);

} // namespace PageLabelWriter
