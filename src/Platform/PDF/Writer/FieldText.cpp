#include "FieldText.h"

#include "HelveticaWidths.h"
#include "PdfValues.h"

#include <qpdf/QUtil.hh>

#include <algorithm>

namespace {

// Of Helvetica, and near enough for others; in parts of the font size.
constexpr double ascent = 0.718;
constexpr double descent = 0.207;
constexpr double leading = 1.15;
constexpr double smallestSize = 4;
constexpr double usualSize = 12;

bool isAscii(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() >= 32 && c.unicode() < 127; });
}

QByteArray shown(const QByteArray& codes) {
    return QByteArray::fromStdString(QPDFObjectHandle::newString(codes.toStdString()).unparse()) + " Tj\n";
}

/// Breaks at blanks so that no line is wider than `width` (points) where that is possible.
std::vector<QByteArray> wrapped(const std::vector<QByteArray>& paragraphs, const FieldFont& font, double size,
                                double width) {
    std::vector<QByteArray> lines;
    for (const QByteArray& paragraph : paragraphs) {
        QByteArray line;
        for (const QByteArray& word : paragraph.split(' ')) {
            const QByteArray longer = line.isNull() ? word : line + ' ' + word;
            if (!line.isEmpty() && font.width(longer) * size / 1000 > width) {
                lines.push_back(line);
                line = word;
            } else {
                line = longer;
            }
        }
        lines.push_back(line);
    }
    return lines;
}

} // namespace

QPDFObjectHandle FieldFont::helvetica() {
    return QPDFObjectHandle::parse("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
}

FieldFont::FieldFont(QPDFObjectHandle font) : m_dictionary(font), m_widths(256, 0) {
    std::copy(helveticaWidths.begin(), helveticaWidths.end(), m_widths.begin() + 32);
    const std::string subtype =
        font.isDictionary() && font.getKey("/Subtype").isName() ? font.getKey("/Subtype").getName() : std::string();
    const QByteArray name = font.isDictionary() && font.getKey("/BaseFont").isName()
                                ? QByteArray::fromStdString(font.getKey("/BaseFont").getName())
                                : QByteArray();
    const bool isPart = name.size() > 8 && name[7] == '+'; // "/ABCDEF+Name"
    const bool isSymbolic = name == "/ZapfDingbats" || name == "/Symbol";
    if ((subtype != "/Type1" && subtype != "/TrueType") || isPart || isSymbolic) {
        m_dictionary = helvetica();
        return;
    }
    QPDFObjectHandle encoding = font.getKey("/Encoding");
    m_latin1 = encoding.isDictionary() || encoding.isNameAndEquals("/WinAnsiEncoding");
    QPDFObjectHandle widths = font.getKey("/Widths");
    int first = 0;
    if (!widths.isArray() || !font.getKey("/FirstChar").getValueAsInt(first) || first < 0)
        return;
    for (int i = 0; i < widths.getArrayNItems() && first + i < 256; ++i)
        m_widths[std::size_t(first) + std::size_t(i)] = PdfValues::toNumber(widths.getArrayItem(i));
}

std::optional<QByteArray> FieldFont::encode(const QString& text) const {
    if (!m_latin1 && !isAscii(text))
        return std::nullopt;
    std::string codes;
    if (!QUtil::utf8_to_win_ansi(text.toStdString(), codes))
        return std::nullopt;
    return QByteArray::fromStdString(codes);
}

double FieldFont::width(const QByteArray& codes) const {
    double sum = 0;
    for (const char code : codes)
        sum += m_widths[static_cast<unsigned char>(code)];
    return sum;
}

std::optional<QByteArray> FieldText::operators(const FieldFont& font, const QByteArray& fontName,
                                               const QByteArray& colorOperators) const {
    QString plain = text;
    plain.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    plain.replace(QLatin1Char('\t'), QLatin1Char(' '));
    if (!multiline)
        plain.replace(QLatin1Char('\n'), QLatin1Char(' '));
    std::vector<QByteArray> lines;
    for (const QString& line : plain.split(QLatin1Char('\n'))) {
        const auto codes = font.encode(line);
        if (!codes)
            return std::nullopt;
        lines.push_back(*codes);
    }

    const double width = std::max(1.0, box.width() - 2 * inset);
    const double height = std::max(1.0, box.height() - 2 * inset);
    double points = size;
    if (multiline) {
        points = size > 0 ? size : usualSize;
        const std::vector<QByteArray> paragraphs = lines;
        lines = wrapped(paragraphs, font, points, width);
        while (size <= 0 && points > smallestSize && double(lines.size()) * points * leading > height) {
            points -= 0.5;
            lines = wrapped(paragraphs, font, points, width);
        }
    } else if (points <= 0) {
        points = std::clamp(height / (ascent + descent), smallestSize, usualSize);
        const double natural = font.width(lines[0]) / 1000;
        if (comb == 0 && natural * points > width)
            points = std::max(smallestSize, width / natural);
    }

    QByteArray result = "BT\n" + colorOperators + '\n' + fontName + ' ' + PdfValues::real(points) + " Tf\n";
    double y = multiline ? box.height() - inset - ascent * points
                         : (box.height() - (ascent + descent) * points) / 2 + descent * points;
    QPointF at;
    const auto moveTo = [&](QPointF next) {
        result += PdfValues::real(next.x() - at.x()) + ' ' + PdfValues::real(next.y() - at.y()) + " Td\n";
        at = next;
    };
    if (comb > 0) {
        const double cell = box.width() / comb;
        for (qsizetype i = 0; i < std::min<qsizetype>(lines[0].size(), comb); ++i) {
            const QByteArray code = lines[0].mid(i, 1);
            moveTo({cell * (double(i) + 0.5) - font.width(code) * points / 2000, y});
            result += shown(code);
        }
        return result + "ET\n";
    }
    for (const QByteArray& line : lines) {
        const double slack = width - font.width(line) * points / 1000;
        moveTo({inset + (alignment == 1 ? slack / 2 : alignment == 2 ? slack : 0), y});
        result += shown(line);
        y -= leading * points;
    }
    return result + "ET\n";
}
