#pragma once

#include <QString>

/// What can be wrong with the source of a formula. The values are codes that callers may rely on.
enum class MTParseErrors : int {
    mismatchBraces = 1,
    invalidCommand = 2,
    characterNotFound = 3,
    missingDelimiter = 4,
    invalidDelimiter = 5,
    missingRight = 6,
    missingLeft = 7,
    invalidEnv = 8,
    // 9 is not used.
    missingBegin = 10,
    missingEnd = 11,
    invalidNumColumns = 12,
    internalError = 13, ///< also for a formula that is nested too deeply or has too many parts
    invalidLimits = 14
};

/// Why a source is not a formula. The message is for the person who wrote it.
struct MTParseError {
    MTParseErrors code;
    QString message;

    [[nodiscard]] static QString domain() { return QStringLiteral("ParseError"); }
};
