#pragma once

#include "EngineContext.h"
#include "PDFFileDestination.h"

/// Reads destinations and actions (ISO 32000-1, 12.3.2 and 12.6). Everything here may throw the engine's way: call it
/// inside `engineTry`. The results are plain values for that reason.
namespace DestinationReader {

/// `destination` is an array, or the name of one in the document's table of names.
void readDestination(fz_context* context, pdf_document* document, pdf_obj* destination, PDFFileDestination& result);

/// Where the Dest or the A entry of a link or outline item leads inside this document. Invalid for anything else.
void readTarget(fz_context* context, pdf_document* document, pdf_obj* item, PDFFileDestination& result);

/// True when the item has a destination or an action that goes to one, whether or not it can be found.
[[nodiscard]] bool hasTarget(fz_context* context, pdf_obj* item);

/// The string object with the web address of the item's action; null when it has none.
[[nodiscard]] pdf_obj* uriOf(fz_context* context, pdf_obj* item);

} // namespace DestinationReader
