#pragma once

#include "ObjectStore.h"

#include <vector>

class SourceFile;

/// Brings the pages of a file into another order by moving as few of them as possible within its page tree.
namespace PageMover {

/// `order` gives the numbers of all pages of the source, zero-based, in the order that they shall have. False when the
/// tree isn't as it should be; what was changed by then is of no use.
[[nodiscard]] bool arrange(const std::vector<int>& order, SourceFile& file, ObjectStore& objects);

} // namespace PageMover
