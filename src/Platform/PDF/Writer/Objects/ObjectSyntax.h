#pragma once

#include <qpdf/QPDFObjGen.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The syntax of objects as it stands in files (ISO 32000-1, 7.3), without the objects' being built.
namespace ObjectSyntax {

/// The one value in `bytes` as QPDF would write it: the same tokens, one space between them, the keys of dictionaries
/// in order. None where there is something else, or where that can't be told (comments, deep nesting). What QPDF would
/// write in another way may come out as something that it would never write, but never as another value.
[[nodiscard]] std::optional<std::string> canonical(std::string_view bytes);

/// A key of a dictionary, with its slash, and the value as `canonical` gives it.
using Entry = std::pair<std::string_view, std::string>;

/// The entries of a dictionary in the order of their keys, which are views into `bytes`. None where `canonical` has
/// none, for anything but a dictionary, and for one that has a key twice.
[[nodiscard]] std::optional<std::vector<Entry>> entries(std::string_view bytes);

/// The page that `bytes` begin with when they are a place on a page, or a dictionary that begins with one at its `/D`.
/// None for anything else, and for what may be one in another way.
[[nodiscard]] std::optional<QPDFObjGen> pageOfPlace(std::string_view bytes);

/// Calls `visit` for each reference to an indirect object in a value as QPDF writes it.
void forEachReference(std::string_view value, const std::function<void(QPDFObjGen)>& visit);

/// A value as QPDF writes it, with others in place of its references.
[[nodiscard]] std::string withReferences(std::string_view value,
                                         const std::function<QPDFObjectHandle(QPDFObjGen)>& replacement);

/// A value as QPDF writes it, with what `replacement` gives for the bytes of each of its strings in their places.
[[nodiscard]] std::string withStrings(std::string_view value,
                                      const std::function<std::string(const std::string& string)>& replacement);

} // namespace ObjectSyntax
