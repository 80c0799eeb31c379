#pragma once

#include "EngineContext.h"

#include <QByteArrayView>

class SourceEngine;

/// References with another generation number than the object has. They lead nowhere (ISO 32000-1, 7.3.10), but the
/// engine goes by the object's number alone, so what they lead to is shown.
namespace LooseReferences {

/// Whether the objects of the engine's file hold any. Takes about what it takes to look at all `bytes`, those of the
/// file: the objects are read only where these say that they may. Those in compressed streams alone aren't found.
[[nodiscard]] bool areIn(QByteArrayView bytes, SourceEngine& engine);

/// Gives those that an object holds the generations of what they lead to; number 0 is the trailer. May throw the
/// engine's way.
void mend(fz_context* context, pdf_document* document, int number);

} // namespace LooseReferences
