#pragma once

#include "ObjectStore.h"

#include <vector>

class SourceFile;

/// Brings the pages of a file into another order by moving as few of them as possible within its page tree, or takes
/// pages out of it, and leaves the rest of the tree as it is.
namespace PageMover {

/// `order` gives the numbers of all pages of the source, zero-based, in the order that they shall have. False when the
/// tree isn't as it should be; what was changed by then is of no use.
[[nodiscard]] bool arrange(const std::vector<int>& order, SourceFile& file, ObjectStore& objects);

/// Takes these pages out of a tree that is as it should be. False when it gives its pages what the removed ones may
/// have had for themselves, or when a new tree is less work; the pages that stay are under the same nodes then.
[[nodiscard]] bool remove(const std::vector<QPDFObjectHandle>& pages, ObjectStore& objects);

} // namespace PageMover
