#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// A password as one of the ways in which programs hand it to a file's security handler.
struct PasswordForm {
    QByteArray bytes;  ///< as the handler takes it
    QByteArray engine; ///< what to give the engine, in UTF-8, for it to hand over those bytes

    /// The ways to try, the standard's first. For handlers of revision 5 and later (AES-256) UTF-8, prepared and as it
    /// was typed. For the older ones PDFDocEncoding, and the encodings that other programs take instead.
    [[nodiscard]] static std::vector<PasswordForm> all(const QString& password, int securityRevision);
};
