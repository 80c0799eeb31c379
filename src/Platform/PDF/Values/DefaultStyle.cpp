#include "DefaultStyle.h"

#include <QColor>
#include <QFont>
#include <QRegularExpression>

namespace {

/// True when the word says something of the style, which is then set.
bool applyWord(const QString& word, QFont& font) {
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    if (isNumber && word.size() == 3 && number >= QFont::Thin && number <= QFont::Black)
        font.setWeight(QFont::Weight(number));
    else if (word == QLatin1String("bold") || word == QLatin1String("bolder"))
        font.setWeight(QFont::Bold);
    else if (word == QLatin1String("italic") || word == QLatin1String("oblique"))
        font.setItalic(true);
    else
        return word == QLatin1String("normal");
    return true;
}

/// The first of a list of families, or an empty string.
QString firstFamily(const QString& families) {
    QString family = families.section(QLatin1Char(','), 0, 0).trimmed();
    for (const QChar quote : {QLatin1Char('\''), QLatin1Char('"')})
        if (family.size() > 1 && family.startsWith(quote) && family.endsWith(quote))
            family = family.mid(1, family.size() - 2);
    return family;
}

/// "italic bold 12pt 'Nimbus Sans', sans-serif". Some programs put the size behind the family.
void applyShorthand(const QString& value, QFont& font) {
    static const QRegularExpression size(QStringLiteral(R"((?:^|\s)[\d.]+(?:pt|px|em|%)(?:/\S+)?(?=\s|$))"));
    QString rest = QString(value).replace(size, QStringLiteral(" ")).trimmed();
    while (applyWord(rest.section(QLatin1Char(' '), 0, 0), font))
        rest = rest.section(QLatin1Char(' '), 1).trimmed();
    if (const QString family = firstFamily(rest); !family.isEmpty())
        font.setFamilies({family});
}

} // namespace

QString DefaultStyle::of(const QFont& font, const QColor& color) {
    QString words;
    if (font.italic())
        words += QStringLiteral("italic ");
    if (font.weight() == QFont::Bold)
        words += QStringLiteral("bold ");
    else if (font.weight() != QFont::Normal)
        words += QString::number(font.weight()) + QLatin1Char(' ');
    const double size = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    QString family = font.family();
    family.remove(QLatin1Char('\''));
    return QStringLiteral("font: %1%2pt '%3'; color: %4").arg(words).arg(size).arg(family, color.name());
}

void DefaultStyle::apply(const QString& style, QFont& font) {
    for (const QString& declaration : style.split(QLatin1Char(';'))) {
        const QString property = declaration.section(QLatin1Char(':'), 0, 0).trimmed().toLower();
        const QString value = declaration.section(QLatin1Char(':'), 1).trimmed();
        if (property == QLatin1String("font"))
            applyShorthand(value, font);
        else if (property == QLatin1String("font-style") || property == QLatin1String("font-weight"))
            applyWord(value, font);
        else if (property == QLatin1String("font-family") && !firstFamily(value).isEmpty())
            font.setFamilies({firstFamily(value)});
    }
}
