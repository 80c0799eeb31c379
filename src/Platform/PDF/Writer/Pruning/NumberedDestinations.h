#pragma once

#include "ObjectStore.h"
#include "SourceFile.h"

/// Destinations that give a page of their own file by its zero-based number, "[3 /Fit]". That is meant for other files
/// (ISO 32000-1, 12.3.2.2) but understood by readers, and leads elsewhere when pages move.
namespace NumberedDestinations {

/// Whether there may be some. Costs a look at all of the file's bytes, not at its objects.
[[nodiscard]] bool mayBeIn(SourceFile& file);

/// Lets those of outline, names, links and actions lead to page objects. To be called before pages are moved or
/// removed. `objects` are those of a file that is written anew as a whole.
void pin(SourceFile& file, ObjectStore& objects);

} // namespace NumberedDestinations
