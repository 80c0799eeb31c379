#pragma once

#include <QtGlobal>

/// Stops the program with `sentence` when `condition` is false: for programming errors only, never for what a file, the
/// network or a person may do. It is on in all builds, so keep the condition cheap. `sentence` is a string literal that
/// says what should have held. Usable on any thread.
#define QUILLO_ASSERT(condition, sentence)                                                                             \
    do {                                                                                                               \
        if (Q_UNLIKELY(!(condition))) {                                                                                \
            qFatal("%s:%d: %s (%s)", __FILE__, __LINE__, sentence, #condition);                                        \
        }                                                                                                              \
    } while (false)
