#pragma once

#include "TextRecognizer.h"

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <vector>

/// What a program and the one that recognizes for it tell each other over a socket, in the machine's own byte order:
/// the header of a picture with its gray pixels, row after row without gaps, and the lines of text with the number of
/// their bytes before them. What comes in is believed in nothing. Any thread.
namespace RecognizerMessage {

struct Picture {
    static constexpr std::uint32_t mark = 0x51524331;

    std::uint32_t kind = mark;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t dotsPerInch = 0;

    /// Of a size that is recognized.
    [[nodiscard]] bool isSound() const;
};

/// More bytes of lines than any page has.
inline constexpr std::uint32_t mostBytes = 16 * 1024 * 1024;

/// No more than `mostBytes`: lines at the end are left out rather.
[[nodiscard]] QByteArray encoded(const std::vector<TextRecognizer::Line>& lines);
/// None for bytes that `encoded` doesn't make: cut off, with boxes outside of the picture, blank lines, bad UTF-8.
[[nodiscard]] std::optional<std::vector<TextRecognizer::Line>> decoded(const QByteArray& bytes);

} // namespace RecognizerMessage
