#pragma once

#include <QString>

#include <optional>

/// The form in which passwords are compared (RFC 4013, on RFC 3454), so that a password opens a file whichever way it
/// was typed: letters and their accents as one character, wide and joined forms as plain ones, every blank the same.
/// None for a text that isn't allowed as a password. Characters that Unicode has got since are let through.
[[nodiscard]] std::optional<QString> saslPrepared(const QString& password);
