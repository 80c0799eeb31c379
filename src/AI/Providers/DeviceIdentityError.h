#pragma once

#include <QString>

#include <stdexcept>

/// The device's key could not be kept. `what()` is the sentence for the user.
class DeviceIdentityError : public std::runtime_error {
public:
    [[nodiscard]] static DeviceIdentityError writeFailed(const std::exception& underlying) {
        return DeviceIdentityError(
            QStringLiteral("Couldn't save the device signing key (%1).").arg(QString::fromUtf8(underlying.what())));
    }

private:
    explicit DeviceIdentityError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}
};
