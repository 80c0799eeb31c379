#pragma once

#include <QString>

#include <stop_token>

/// Files of office programs, laid out by LibreOffice.
namespace OfficeConverter {

enum class Outcome {
    converted,
    failed,         ///< the file isn't what its name says, is protected or broken, or took longer than two minutes
    programMissing, ///< LibreOffice isn't installed, or only without what reads this file
    stopped,
};

/// doc, docx, rtf, rtfd with Writer, and what `FilePreviewer` shows with Calc and Impress, into a PDF at `destination`,
/// whose folder exists; there is none unless it was converted. The document's own pages, with real text and links. Ends
/// within a moment of `stop`. Any thread, several at once.
[[nodiscard]] Outcome convert(const QString& source, const QString& destination, const std::stop_token& stop);

} // namespace OfficeConverter
