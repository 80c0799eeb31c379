#pragma once

/// A run of places in a list, counted in atoms of its source.
struct MTRange {
    int location = 0;
    int length = 0;

    /// The place behind the last one.
    [[nodiscard]] constexpr int end() const { return location + length; }
    friend constexpr bool operator==(const MTRange&, const MTRange&) = default;
};
