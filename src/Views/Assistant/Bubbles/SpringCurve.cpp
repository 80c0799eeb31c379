#include "SpringCurve.h"

#include <cmath>
#include <numbers>

static constexpr double response = 0.4; // seconds
static constexpr double dampingFraction = 0.8;
static constexpr double duration = 0.6; // seconds; less than a thousandth of the way is left then

/// The way of an underdamped oscillator that is let go at rest, after `progress` of the duration.
static double position(double progress) {
    if (progress >= 1)
        return 1;
    const double time = progress * duration;
    const double frequency = 2 * std::numbers::pi / response;
    const double decay = dampingFraction * frequency;
    const double dampedFrequency = frequency * std::sqrt(1 - dampingFraction * dampingFraction);
    return 1 - std::exp(-decay * time) *
                   (std::cos(dampedFrequency * time) + decay / dampedFrequency * std::sin(dampedFrequency * time));
}

SpringCurve::Movement SpringCurve::conversation() {
    QEasingCurve curve;
    curve.setCustomType(position);
    return {static_cast<int>(duration * 1000), curve};
}
