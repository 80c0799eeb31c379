#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QByteArray>

#include <string>
#include <string_view>

/// The protection of a file that is being written by AES-256 (ISO 32000-2, 7.6): all strings and streams, those of
/// attachments and metadata too, are encrypted with a random key, which the passwords give.
class FileEncryption {
public:
    /// The passwords as such files take them (`passwordBytes`). Whoever opens the file may do everything with it.
    FileEncryption(const std::string& userPassword, const std::string& ownerPassword);

    /// The encryption dictionary, whose own strings aren't encrypted.
    [[nodiscard]] QPDFObjectHandle dictionary() const;
    /// The content of a stream or a string.
    [[nodiscard]] QByteArray encrypted(const QByteArray& bytes) const;
    /// A value as QPDF writes it with its strings encrypted.
    [[nodiscard]] std::string withStringsEncrypted(std::string_view value) const;

private:
    std::string m_key;
    QPDFObjectHandle m_dictionary;
};
