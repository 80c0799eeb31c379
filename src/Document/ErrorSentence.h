#pragma once

#include <QString>

/// What a person is told of the exception being handled, whatever reading, writing or composing a document has thrown;
/// its causes go to the log after `step` ("printing"). In a handler only; any thread.
[[nodiscard]] QString sentenceOfCurrentError(const char* step);
