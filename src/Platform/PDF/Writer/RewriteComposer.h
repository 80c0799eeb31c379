#pragma once

#include "SourceFile.h"

class QIODevice;
struct DocumentContents;
struct PDFWriteOptions;

/// Composes a whole new file: of the source's objects that the document still needs and of those that come with pages
/// from other sources.
namespace RewriteComposer {

/// Writes the file to `device`, whose errors are for the caller to notice. False when it failed, or when files that
/// aren't read from the drawing engine's copy turned out to be damaged: then what was written may lack something that
/// was seen, and `Base::copy` is the way. That one throws `std::exception` when it fails.
[[nodiscard]] bool compose(const DocumentContents& contents, const PDFWriteOptions& options, QIODevice& device,
                           SourceFile::Base base);

} // namespace RewriteComposer
