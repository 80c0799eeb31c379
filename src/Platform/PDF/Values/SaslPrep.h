#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The form in which passwords are compared (RFC 4013, on RFC 3454), so that a password opens a file whichever way it
/// was typed: letters and their accents as one character, wide and joined forms as plain ones, every blank the same.
/// None for a text that isn't allowed as a password. Characters that Unicode has got since are let through.
[[nodiscard]] std::optional<QString> saslPrepared(const QString& password);

/// How many bytes of a password count in files that are protected by AES-256 (ISO 32000-2, 7.6.4.3.3).
inline constexpr qsizetype longestPassword = 127;

/// The password as such files take it: in UTF-8, prepared, or as it was typed when that isn't allowed. Not cut. Empty
/// also for a password of nothing but characters that don't count.
[[nodiscard]] QByteArray passwordBytes(const QString& password);
