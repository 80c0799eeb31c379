#pragma once

#include "ObjectCopier.h"
#include "ObjectStore.h"

/// Brings the layers (optional content, ISO 32000-1, 8.11) of another file over that its copied pages use.
namespace LayerImporter {

/// Adds those that `copier` has copied from `pdf` to the layers of the file, on or off as they were there.
void bringOver(QPDF& pdf, ObjectCopier& copier, ObjectStore& objects);

} // namespace LayerImporter
