#include "GlyphText.h"

#include <QRegularExpression>
#include <QRegularExpressionMatch>
#include <QStringView>

#include <algorithm>

namespace {

/// Forms of letters which fonts have for the sake of old programs: Latin, Armenian and Hebrew ligatures, Arabic ones,
/// Chinese characters as headings of dictionaries.
bool isFormOfLetter(char16_t unit) {
    return (unit >= 0x2F00 && unit <= 0x2FD5) || (unit >= 0xFB00 && unit <= 0xFDFB) ||
           (unit >= 0xFE70 && unit <= 0xFEFC);
}

/// The characters that look like the parts of Chinese ones from U+2E80 on, with which fonts have them in common; the
/// same where that is none of the basic plane.
constexpr char16_t charactersOfParts[] =
    u"⺀厂乛乚乙亻冂⺇刀刂卜㔾小小兀尣尢⺑巳幺彑彐忄心扌攵⺚旡日月歺母民氵氺灬爫"
    u"爫"
    u"丬"
    u"牛"
    u"犭王⺪目示礻⺮糹纟罓罒㓁冗⺵羊⺷⺸耂肀聿肉⺽艹艹艹虎衤覀西见角⻇讠贝⻊车辶辶辶邑"
    u"钅長镸长门⻕阝雨青韦页风飞食⻞飠饣⻡马骨鬼鱼鸟卤麦黄黾斉齐歯齿竜龙龜亀龟";
constexpr char16_t firstPart = 0x2E80;
constexpr char16_t lastPart = 0x2EF3;

QString fromHexadecimal(QStringView digits) {
    QString text;
    for (; digits.size() >= 4; digits = digits.mid(4))
        text += QChar(digits.left(4).toUShort(nullptr, 16));
    return text;
}

QByteArray hexadecimal(QStringView text) {
    QByteArray digits;
    for (const QChar unit : text)
        digits += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    return digits;
}

} // namespace

GlyphText::Texts GlyphText::read(const QByteArray& map) {
    static const QRegularExpression range(
        QStringLiteral("<([0-9A-F]+)> <([0-9A-F]+)> (?:<([0-9A-F]+)>|\\[([^\\]]*)\\])"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression value(QStringLiteral("<([0-9A-F]*)>"), QRegularExpression::CaseInsensitiveOption);
    constexpr int lastGlyph = 0xFFFF;
    Texts texts;
    const QString ranges = QString::fromLatin1(map).section(QStringLiteral("endcodespacerange"), 1);
    for (auto found = range.globalMatch(ranges); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        int glyph = match.captured(1).toInt(nullptr, 16);
        const int last = std::min(match.captured(2).toInt(nullptr, 16), lastGlyph);
        if (match.hasCaptured(4)) {
            for (auto values = value.globalMatch(match.captured(4)); values.hasNext() && glyph <= last; ++glyph)
                texts[glyph] = fromHexadecimal(values.next().capturedView(1));
            continue;
        }
        for (auto unit = match.captured(3).toUShort(nullptr, 16); glyph <= last; ++glyph, ++unit)
            texts[glyph] = QChar(unit);
    }
    return texts;
}

QByteArray GlyphText::written(const Texts& texts) {
    QByteArray map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                     "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
                     "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                     "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    constexpr qsizetype largestBlock = 100; // more are against the rules of such maps
    qsizetype left = texts.size();
    qsizetype leftInBlock = 0;
    for (auto text = texts.cbegin(); text != texts.cend(); ++text, --left) {
        if (leftInBlock == 0) {
            leftInBlock = std::min(left, largestBlock);
            map += QByteArray::number(leftInBlock) + " beginbfchar\n";
        }
        const auto glyph = QChar(char16_t(text.key()));
        map += '<' + hexadecimal(QStringView(&glyph, 1)) + "> <" + hexadecimal(*text) + ">\n";
        if (--leftInBlock == 0)
            map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

QString GlyphText::typed(const QString& text) {
    QString letters;
    for (const QChar character : text) {
        if (isFormOfLetter(character.unicode()))
            letters += QString(character).normalized(QString::NormalizationForm_KC);
        else if (character.unicode() >= firstPart && character.unicode() <= lastPart)
            letters += QChar(charactersOfParts[character.unicode() - firstPart]);
        else if (character == QChar::Tabulation || character == QChar::Nbsp)
            letters += QLatin1Char(' ');
        else if (character == QChar::SoftHyphen)
            letters += QLatin1Char('-');
        else
            letters += character;
    }
    return letters;
}
