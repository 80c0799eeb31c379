#pragma once

#include <QVariantMap>

class SourceEngine;

/// Reads the information dictionary of a file (ISO 32000-1, 14.3.3). Any thread.
namespace InformationReader {

/// See `PDFDocument::documentAttributes` for the types. Entries that are neither text nor name are left out.
[[nodiscard]] QVariantMap read(SourceEngine& engine);

} // namespace InformationReader
