#pragma once

#include <QByteArray>

class SourceEngine;

/// The file as the drawing engine has it in memory, once it has repaired it. Any thread.
namespace EngineCopy {

/// Objects keep their numbers, streams their bytes and a protected file its protection; what can't be read is left out.
/// Empty when the engine can't write it.
[[nodiscard]] QByteArray of(SourceEngine& engine);

} // namespace EngineCopy
