#pragma once

#include "ObjectStore.h"

#include <vector>

/// The page tree of a file that is being written (ISO 32000-1, 7.7.3).
namespace PageTree {

/// Gives the page what it inherits from the nodes above it, so that it may stand anywhere. Inherited resources stay one
/// object for all pages that had them.
void keepInherited(QPDFObjectHandle page, ObjectStore& objects);

/// Replaces the tree by an even one over these pages, each an indirect object that stands once in the list and that
/// inherits nothing.
void write(const std::vector<QPDFObjectHandle>& pages, ObjectStore& objects);

} // namespace PageTree
