#pragma once

#include "ObjectStore.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <map>
#include <string>

/// Walks a name tree or a number tree (ISO 32000-1, 7.9.6 and 7.9.7) whose nodes may be broken: nodes met a second time
/// or too deep count as empty.
namespace NameTree {

/// Calls `visit(key, value)` for each pair, in the order of the file. `leafKey` is "/Names" or "/Nums".
void forEach(QPDFObjectHandle root, const std::string& leafKey,
             const std::function<void(QPDFObjectHandle key, QPDFObjectHandle value)>& visit);

/// Takes out the pairs for which `isGone(key, value)` is true, nodes that become empty, and nodes that the walk doesn't
/// reach; brings the limits of the nodes up to date.
void removeIf(QPDFObjectHandle root, const std::string& leafKey,
              const std::function<bool(QPDFObjectHandle key, QPDFObjectHandle value)>& isGone);

/// The root of a new name tree with these pairs, of which there is at least one.
[[nodiscard]] QPDFObjectHandle make(const std::map<std::string, QPDFObjectHandle>& pairs, ObjectStore& objects);

} // namespace NameTree
