#include "PageFont.h"

#include <QFontDatabase>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <optional>

namespace {

/// What the end of a PostScript name says of the style.
struct StyleWord {
    QLatin1String word;
    std::optional<QFont::Weight> weight = {};
    bool italic = false;
};

// A word stands before those that it ends with.
const std::array styleWords{
    StyleWord{QLatin1String("ExtraBold"), QFont::ExtraBold},
    StyleWord{QLatin1String("UltraBold"), QFont::ExtraBold},
    StyleWord{QLatin1String("SemiBold"), QFont::DemiBold},
    StyleWord{QLatin1String("DemiBold"), QFont::DemiBold},
    StyleWord{QLatin1String("Bold"), QFont::Bold},
    StyleWord{QLatin1String("Demi"), QFont::DemiBold},
    StyleWord{QLatin1String("Black"), QFont::Black},
    StyleWord{QLatin1String("Heavy"), QFont::Black},
    StyleWord{QLatin1String("Medium"), QFont::Medium},
    StyleWord{QLatin1String("Light"), QFont::Light},
    StyleWord{QLatin1String("Thin"), QFont::Thin},
    StyleWord{QLatin1String("Regular")},
    StyleWord{QLatin1String("Normal")},
    StyleWord{QLatin1String("Roman")},
    StyleWord{QLatin1String("Book")},
    StyleWord{QLatin1String("Italic"), {}, true},
    StyleWord{QLatin1String("Oblique"), {}, true},
    StyleWord{QLatin1String("Ital"), {}, true},
    StyleWord{QLatin1String("It"), {}, true},
    StyleWord{QLatin1String("Obl"), {}, true},
    StyleWord{QLatin1String("MT")},
    StyleWord{QLatin1String("PS")},
};

/// Families of files for which font configurations name a substitute of the same metrics.
const std::array substituted{QLatin1String("Helvetica"), QLatin1String("Arial"),       QLatin1String("Times"),
                             QLatin1String("Courier"),   QLatin1String("Courier New"), QLatin1String("Times New Roman"),
                             QLatin1String("Symbol"),    QLatin1String("Palatino"),    QLatin1String("Calibri"),
                             QLatin1String("Cambria"),   QLatin1String("Georgia"),     QLatin1String("Arial Narrow")};

QString squeezed(const QString& name) {
    QString letters;
    std::copy_if(name.begin(), name.end(), std::back_inserter(letters), [](QChar c) { return c.isLetterOrNumber(); });
    return letters.toLower();
}

/// The family that a name without blanks means, or an empty string.
QString familyNamed(const QString& name) {
    static const QHash<QString, QString> families = [] {
        QHash<QString, QString> known;
        for (const QLatin1String family : substituted)
            known.insert(squeezed(family), family);
        for (const QString& family : QFontDatabase::families())
            known.insert(squeezed(family), family);
        return known;
    }();
    return families.value(squeezed(name));
}

const StyleWord* styleAtEnd(const QString& name) {
    const auto found = std::find_if(styleWords.begin(), styleWords.end(),
                                    [&name](const StyleWord& style) { return name.endsWith(style.word); });
    return found == styleWords.end() ? nullptr : &*found;
}

QFont fontOf(const QStringList& families, double size, QFont::Weight weight, bool italic) {
    QFont font;
    font.setFamilies(families);
    font.setPointSizeF(size);
    font.setWeight(weight);
    font.setItalic(italic);
    return font;
}

const struct {
    QLatin1String shortName;
    QLatin1String name;
    QLatin1String family;
    bool bold;
    bool italic;
} standardFonts[] = {
    {QLatin1String("Helv"), QLatin1String("Helvetica"), QLatin1String("Helvetica"), false, false},
    {QLatin1String("HeBo"), QLatin1String("Helvetica-Bold"), QLatin1String("Helvetica"), true, false},
    {QLatin1String("HeOb"), QLatin1String("Helvetica-Oblique"), QLatin1String("Helvetica"), false, true},
    {QLatin1String("HeBO"), QLatin1String("Helvetica-BoldOblique"), QLatin1String("Helvetica"), true, true},
    {QLatin1String("TiRo"), QLatin1String("Times-Roman"), QLatin1String("Times"), false, false},
    {QLatin1String("TiBo"), QLatin1String("Times-Bold"), QLatin1String("Times"), true, false},
    {QLatin1String("TiIt"), QLatin1String("Times-Italic"), QLatin1String("Times"), false, true},
    {QLatin1String("TiBI"), QLatin1String("Times-BoldItalic"), QLatin1String("Times"), true, true},
    {QLatin1String("Cour"), QLatin1String("Courier"), QLatin1String("Courier"), false, false},
    {QLatin1String("CoBo"), QLatin1String("Courier-Bold"), QLatin1String("Courier"), true, false},
    {QLatin1String("CoOb"), QLatin1String("Courier-Oblique"), QLatin1String("Courier"), false, true},
    {QLatin1String("CoBO"), QLatin1String("Courier-BoldOblique"), QLatin1String("Courier"), true, true},
};

} // namespace

QFont PageFont::nearest(const PageText::Font& font, double size) {
    QFont::Weight weight = font.bold ? QFont::Bold : QFont::Normal;
    bool italic = font.italic;
    // The words of style are taken off one after another, so that a family that ends in one of them is still found.
    QString name = font.name;
    QString family = familyNamed(name);
    while (family.isEmpty()) {
        const StyleWord* const style = styleAtEnd(name);
        if (!style)
            break;
        weight = style->weight.value_or(weight);
        italic = italic || style->italic;
        name.chop(style->word.size());
        while (name.endsWith(QLatin1Char('-')) || name.endsWith(QLatin1Char(',')) || name.endsWith(QLatin1Char(' ')))
            name.chop(1);
        family = familyNamed(name);
    }
    const QFont::StyleHint hint = font.monospaced ? QFont::Monospace : font.serif ? QFont::Serif : QFont::SansSerif;
    const QString generic = font.monospaced ? QStringLiteral("monospace")
                            : font.serif    ? QStringLiteral("serif")
                                            : QStringLiteral("sans-serif");
    QFont result = fontOf(family.isEmpty() ? QStringList{generic} : QStringList{family, generic}, size, weight, italic);
    result.setStyleHint(hint);
    return result;
}

QFont PageFont::ofDefaultAppearance(const QString& name, double size) {
    for (const auto& font : standardFonts)
        if (name == font.shortName || name == font.name)
            return fontOf({font.family}, size, font.bold ? QFont::Bold : QFont::Normal, font.italic);
    return fontOf({name}, size, QFont::Normal, false);
}

QByteArray PageFont::standardName(const QFont& font) {
    const QString family = font.family();
    const auto named = [&family](const char* part) {
        return family.contains(QLatin1String(part), Qt::CaseInsensitive);
    };
    // A font that was read from a file bears the name of the file's resource.
    const bool bold = font.bold() || named("bold") || family == QLatin1String("HeBo") ||
                      family == QLatin1String("TiBo") || family == QLatin1String("CoBo");
    const bool italic = font.italic() || named("italic") || named("oblique");
    if (font.fixedPitch() || named("cour") || named("mono") || named("consol"))
        return QByteArray("Courier") + (bold && italic ? "-BoldOblique" : bold ? "-Bold" : italic ? "-Oblique" : "");
    if (font.styleHint() == QFont::Serif || family.startsWith(QLatin1String("Ti")) || named("times") ||
        (named("serif") && !named("sans")) || named("garamond") || named("georgia"))
        return QByteArray("Times") + (bold && italic ? "-BoldItalic" : bold ? "-Bold" : italic ? "-Italic" : "-Roman");
    return QByteArray("Helvetica") + (bold && italic ? "-BoldOblique" : bold ? "-Bold" : italic ? "-Oblique" : "");
}

QByteArray PageFont::shortName(const QByteArray& standardName) {
    for (const auto& font : standardFonts)
        if (standardName == font.name.data())
            return font.shortName.data();
    return "Helv";
}
