#include "RecognizerMessage.h"

#include <QStringDecoder>

#include <cmath>
#include <cstring>

namespace {

/// Before the text of each line.
struct LineHeader {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    std::uint32_t textBytes = 0;
    std::uint32_t zero = 0;
};

bool isSound(const LineHeader& line) {
    constexpr double rounding = 1e-6;
    const auto isShare = [](double value) { return std::isfinite(value) && value >= 0 && value <= 1; };
    return isShare(line.left) && isShare(line.top) && isShare(line.width) && isShare(line.height) &&
           line.left + line.width <= 1 + rounding && line.top + line.height <= 1 + rounding && line.zero == 0;
}

} // namespace

bool RecognizerMessage::Picture::isSound() const {
    return kind == mark && width > 0 && height > 0 && width <= TextRecognizer::maximumSide &&
           height <= TextRecognizer::maximumSide && std::int64_t(width) * height <= TextRecognizer::maximumPixelCount &&
           dotsPerInch >= 0;
}

QByteArray RecognizerMessage::encoded(const std::vector<TextRecognizer::Line>& lines) {
    QByteArray bytes;
    for (const TextRecognizer::Line& line : lines) {
        const QByteArray text = line.text.toUtf8();
        const QRectF& box = line.box;
        const LineHeader header{box.x(), box.y(), box.width(), box.height(), std::uint32_t(text.size()), 0};
        if (bytes.size() + qsizetype(sizeof header) + text.size() > qsizetype(mostBytes))
            break;
        bytes.append(reinterpret_cast<const char*>(&header), sizeof header);
        bytes.append(text);
    }
    return bytes;
}

std::optional<std::vector<TextRecognizer::Line>> RecognizerMessage::decoded(const QByteArray& bytes) {
    std::vector<TextRecognizer::Line> lines;
    qsizetype at = 0;
    while (at < bytes.size()) {
        LineHeader header;
        if (bytes.size() - at < qsizetype(sizeof header))
            return std::nullopt;
        std::memcpy(&header, bytes.constData() + at, sizeof header);
        at += qsizetype(sizeof header);
        if (!isSound(header) || bytes.size() - at < qsizetype(header.textBytes))
            return std::nullopt;
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = decoder(QByteArrayView(bytes.constData() + at, qsizetype(header.textBytes)));
        at += qsizetype(header.textBytes);
        if (decoder.hasError() || text.isEmpty() || text.trimmed() != text)
            return std::nullopt;
        lines.push_back({text, {header.left, header.top, header.width, header.height}});
    }
    return lines;
}
