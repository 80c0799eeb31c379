#pragma once

class QIODevice;
struct DocumentContents;
struct PDFWriteOptions;

/// Composes a whole new file: of the source's objects that the document still needs and of those that come with pages
/// from other sources.
namespace RewriteComposer {

/// Writes the file to `device`, whose errors are for the caller to notice. Throws `std::exception`.
void compose(const DocumentContents& contents, const PDFWriteOptions& options, QIODevice& device);

} // namespace RewriteComposer
