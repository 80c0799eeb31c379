#pragma once

#include <QEasingCurve>

/// The movement of a weight on a spring, as a curve of an animation.
namespace SpringCurve {

/// How long the movement takes until nothing of it can be seen any more, and its curve over that time.
struct Movement {
    int milliseconds;
    QEasingCurve curve;
};

/// That of the conversation: a response of 0.4 s (the period without damping) and 0.8 of the critical damping.
[[nodiscard]] Movement conversation();

} // namespace SpringCurve
