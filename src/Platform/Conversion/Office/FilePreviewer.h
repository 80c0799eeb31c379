#pragma once

#include <QString>

#include <stop_token>

/// Pages of files that aren't converted into documents: spreadsheets, presentations, Apple's office files and books.
namespace FilePreviewer {

enum class Outcome {
    written,
    failed, ///< the file isn't what its name says, is protected or broken, or took longer than two minutes
    programMissing,
    stopped,
};

/// Writes the pages to `destination`, a PDF whose folder exists; there is none unless it was written. A spreadsheet has
/// a page for each sheet. What Apple's newer programs write and LibreOffice can't read is shown by the pages or the
/// picture that those files carry of themselves. Any thread, several at once.
[[nodiscard]] Outcome writePages(const QString& source, const QString& destination, const std::stop_token& stop);

/// The Debian package of the program that `programMissing` tells of.
[[nodiscard]] QString packageFor(const QString& source);

} // namespace FilePreviewer
