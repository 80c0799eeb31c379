#include "TextFileReader.h"

#include <algorithm>

namespace {

constexpr qint64 pieceSize = 65'536;

/// The control characters of texts: bell, backspace, tab, the ends of lines and pages, escape.
constexpr bool isControlOfText(char16_t unit) {
    return (unit >= 7 && unit <= 13) || unit == 27;
}

/// What is in no text. ISO 2022 switches between its sets of characters by 14 and 15.
bool isOfNoText(unsigned char byte) {
    return byte < 32 && !isControlOfText(byte) && byte != 14 && byte != 15 && byte != 26;
}

/// Halves of characters of UTF-16 without the other half.
qint64 countHalves(const QString& text) {
    qint64 halves = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate())
            continue;
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else
            ++halves;
    }
    return halves;
}

} // namespace

QString westernText(const QByteArray& bytes) {
    static constexpr char16_t ofWindows[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                               0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};
    QString text = QString::fromLatin1(bytes);
    for (QChar& character : text)
        if (character.unicode() >= 0x80 && character.unicode() < 0xA0)
            character = ofWindows[character.unicode() - 0x80];
    return text;
}

TextFileReader::TextFileReader(QIODevice& device) : m_device(device), m_encoding(findEncoding()) {
    if (m_encoding)
        m_decoder = QStringDecoder(*m_encoding);
    if (!m_device.seek(0))
        m_encoding.reset();
}

std::optional<QStringConverter::Encoding> TextFileReader::findEncoding() {
    const std::optional<QStringConverter::Encoding> marked = QStringConverter::encodingForData(m_device.peek(4));
    QStringDecoder decoder(marked.value_or(QStringConverter::Utf8));
    bool hasControls = false;
    qint64 length = 0;
    qint64 broken = 0;
    while (true) {
        const QByteArray bytes = m_device.read(pieceSize);
        if (bytes.isEmpty())
            break;
        const QString text = decoder.decode(bytes);
        if (text.contains(QChar(0)))
            return std::nullopt;
        length += text.size();
        broken += countHalves(text);
        if (!marked)
            hasControls = hasControls || std::any_of(bytes.cbegin(), bytes.cend(), isOfNoText);
    }
    if (!m_device.atEnd())
        return std::nullopt;
    constexpr qint64 seldom = 100; // a pair may lie across two pieces
    if (marked && *marked != QStringConverter::Utf8)
        return decoder.hasError() || broken > length / seldom ? std::nullopt : marked;
    const QString end = decoder.decode(QByteArrayLiteral("\n")); // a character that breaks off at the end is an error
    if (!decoder.hasError() && !end.isEmpty())
        return QStringConverter::Utf8;
    if (hasControls)
        return std::nullopt;
    return QStringConverter::Latin1;
}

QString TextFileReader::next() {
    while (m_encoding) {
        const QByteArray bytes = m_device.read(pieceSize);
        if (bytes.isEmpty())
            return {};
        QString text = isGuess() ? westernText(bytes) : QString(m_decoder.decode(bytes));
        if (!text.isEmpty())
            return text;
    }
    return {};
}
