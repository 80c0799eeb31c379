#pragma once

#include <QString>

#include <variant>

/// A stretch of a reply: words, or a formula.
struct MathSegment {
    struct Text {
        QString text;
        bool operator==(const Text&) const = default;
    };
    struct Math {
        QString latex; ///< without its delimiters, not trimmed
        bool display = false;
        bool operator==(const Math&) const = default;
    };

    std::variant<Text, Math> content;
    bool operator==(const MathSegment&) const = default;
};
