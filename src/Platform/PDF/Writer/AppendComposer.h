#pragma once

#include <QByteArray>

#include <optional>

struct DocumentContents;

/// Composes a file by appending what changed to the bytes of the source.
namespace AppendComposer {

struct Update {
    QByteArray bytes;              ///< to be put behind the source's
    qint64 earlierUpdates = 0;     ///< how many bytes of the source are such updates already
    bool isSigned = false;         ///< somebody's signature holds as long as the bytes of the source stay
    bool breaksSignatures = false; ///< a signer has forbidden such changes
};

/// None when the file must be rewritten instead: it is protected, damaged or has bytes before its header, or pages left
/// it or came in. Pages that only moved are moved within the page tree.
[[nodiscard]] std::optional<Update> compose(const DocumentContents& contents);

} // namespace AppendComposer
