#pragma once

#include <QByteArrayView>

class SourceEngine;

/// References with another generation number than the object has. They lead nowhere (ISO 32000-1, 7.3.10), but the
/// engine goes by the object's number alone, so what they lead to is shown.
namespace LooseReferences {

/// Whether there are any in the bytes of the engine's file, outside of compressed streams; takes about what it takes to
/// look at them all. May take other bytes for one.
[[nodiscard]] bool areIn(QByteArrayView bytes, SourceEngine& engine);

} // namespace LooseReferences
