#pragma once

#include <QString>

/// How the person who is logged in is named in what they write.
namespace AccountName {

/// The full name that the account has, or else its login; empty when the system knows neither. Asked of the system
/// once. Any thread.
[[nodiscard]] QString current();

/// The same from a line of the system's accounts: `details` begins with the full name up to the first comma, in which
/// "&" stands for the login with a capital letter.
[[nodiscard]] QString from(const QString& details, const QString& login);

} // namespace AccountName
