#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>
#include <QStringDecoder>

#include <optional>

/// The text of a file, piece by piece: a large file is never in memory as a whole. A byte order mark tells the encoding
/// (UTF-8, UTF-16, UTF-32); without one it is UTF-8 where all bytes are, and otherwise the Western encoding of eight
/// bits, which never fails. One thread at a time.
class TextFileReader {
public:
    /// Reads the device once to its end, which tells the encoding. It has to be open and to outlive the reader.
    explicit TextFileReader(QIODevice& device);

    /// Whether these are the bytes of a text, and not of a picture or a program, whatever its file is called.
    [[nodiscard]] bool isText() const { return m_encoding != std::nullopt; }

    /// True where nothing but the lack of other signs speaks for the Western encoding.
    [[nodiscard]] bool isGuess() const { return m_encoding == QStringConverter::Latin1; }

    /// The next piece of the text, without the byte order mark; an empty one at the end.
    [[nodiscard]] QString next();

private:
    [[nodiscard]] std::optional<QStringConverter::Encoding> findEncoding();

    QIODevice& m_device;
    std::optional<QStringConverter::Encoding> m_encoding;
    QStringDecoder m_decoder;
};

/// The text of bytes in the Western encoding. What ISO 8859-1 leaves to control characters that no text has, are the
/// quotation marks and dashes of Windows.
[[nodiscard]] QString westernText(const QByteArray& bytes);
