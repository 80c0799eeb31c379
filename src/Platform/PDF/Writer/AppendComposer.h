#pragma once

#include <QByteArray>

#include <optional>

struct DocumentContents;

/// Composes a file by appending what changed to the bytes of the source.
namespace AppendComposer {

/// None when the file must be rewritten instead: it is protected, damaged or has bytes before its header, pages left it
/// or came in, or updates would make up half of it. Pages that only moved are moved within the page tree.
[[nodiscard]] std::optional<QByteArray> compose(const DocumentContents& contents);

} // namespace AppendComposer
