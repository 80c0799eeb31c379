#pragma once

#include "FileStamp.h"

#include <QByteArray>
#include <QString>

#include <optional>

struct DocumentContents;
struct PDFWriteOptions;

/// Composes the file that says what a document holds, and stores it. Any thread; everything throws `PDFError`.
namespace DocumentComposer {

[[nodiscard]] QByteArray compose(const DocumentContents& contents, const PDFWriteOptions& options);

/// The same as a file, which is replaced or made in one step; an old one stays as it was when that fails. With
/// `expected` none but the file with that stamp is replaced. Gives the stamp of the written file.
FileStamp write(const DocumentContents& contents, const PDFWriteOptions& options, const QString& path,
                const std::optional<FileStamp>& expected);

/// What appended to the bytes of the source gives a file with all changes, however much that is. Empty when there are
/// none; none when the file has to be written anew.
[[nodiscard]] std::optional<QByteArray> update(const DocumentContents& contents);

} // namespace DocumentComposer
