#pragma once

#include "TextRecognizer.h"

#include <QByteArrayList>

#include <chrono>
#include <optional>
#include <stop_token>
#include <vector>

/// Recognizes text in a program of its own, so that a picture at which the recognizer crashes or hangs costs that
/// picture and no more. Each thread has one such program, from its first picture to the thread's end; after a failure
/// the next picture gets a new one. The other end is `RecognizerServer`.
namespace RecognizerProcess {

/// For how long a picture may take.
inline constexpr std::chrono::milliseconds timeLimit(60'000);

/// The command that starts the program, with a socket as its standard input and output. Empty, as at first, for
/// recognizing in the own process. Main thread, before any picture.
void setCommand(QByteArrayList command);

/// As `TextRecognizer::recognize`, but none when the program ended, took longer than `limit`, answered nonsense or
/// couldn't be started, and when `stop` was requested, which ends it within a moment. Any thread.
[[nodiscard]] std::optional<std::vector<TextRecognizer::Line>> recognize(const QImage& image, int dotsPerInch,
                                                                         const std::stop_token& stop,
                                                                         std::chrono::milliseconds limit = timeLimit);

} // namespace RecognizerProcess
