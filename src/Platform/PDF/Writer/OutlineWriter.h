#pragma once

#include "AnnotationDictionary.h"
#include "ObjectStore.h"

class PDFOutline;
class SourceFiles;

/// Writes an outline (ISO 32000-1, 12.3.3).
namespace OutlineWriter {

/// Replaces the outline of the file; null removes it. Of entries that were read from a file all that wasn't changed
/// stays as it is there. Another entry whose page isn't in the file keeps its label and leads nowhere.
void write(const PDFOutline* root, ObjectStore& objects, SourceFiles& files,
           const AnnotationDictionary::PageLookup& pages);

} // namespace OutlineWriter
