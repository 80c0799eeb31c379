#pragma once

#include <QByteArray>
#include <QString>

/// What protects a copy with a password. Any thread.
namespace CopyProtection {

/// A sentence that tells why no copy can have the password, or an empty string. Not for an empty password.
[[nodiscard]] QString refusal(const QString& password);

/// True when the file is closed without the password, and opens with it to as many pages.
[[nodiscard]] bool isProtected(const QByteArray& file, const QString& password, int pageCount);

} // namespace CopyProtection
