#pragma once

#include "ObjectStore.h"

class SourceFile;

/// Lets the entries of a file's outline lead to page objects where they lead to places among the pages, "[3 /Fit]",
/// which is meant for other files but understood by readers. To be called before pages are moved or removed.
namespace OutlinePages {

void pin(SourceFile& file, ObjectStore& objects);

} // namespace OutlinePages
