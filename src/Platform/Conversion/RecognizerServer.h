#pragma once

/// The program that recognizes text for another one: `RecognizerProcess` starts it.
namespace RecognizerServer {

/// Answers pictures that come at standard input, at standard output, until the other program closes that or ends, and
/// returns the exit code. Needs no application object.
[[nodiscard]] int run();

} // namespace RecognizerServer
