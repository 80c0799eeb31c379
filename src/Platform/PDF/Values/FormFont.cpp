#include "FormFont.h"

#include "PageFont.h"

namespace {

// Bits of the Flags key of a font descriptor.
constexpr int fixedPitchFlag = 1 << 0;
constexpr int serifFlag = 1 << 1;
constexpr int symbolicFlag = 1 << 2;
constexpr int nonsymbolicFlag = 1 << 5;
constexpr int italicFlag = 1 << 6;
constexpr int boldFlag = 1 << 18;

constexpr qsizetype tagLength = 7; // "ABCDEF+"

bool hasTag(const QString& name) {
    return name.size() > tagLength && name.at(tagLength - 1) == QLatin1Char('+');
}

} // namespace

bool FormFont::isLettered() const {
    return flags & nonsymbolicFlag || (!isEmbedded && !(flags & symbolicFlag));
}

bool FormFont::isWritable() const {
    const bool isSymbols = baseFont == QLatin1String("ZapfDingbats") || baseFont == QLatin1String("Symbol");
    return isSimple && !baseFont.isEmpty() && !hasTag(baseFont) && !isSymbols && (hasEncoding || isLettered());
}

QFont FormFont::nearest(double size) const {
    const QString name = hasTag(baseFont) ? baseFont.mid(tagLength) : baseFont;
    if (name.isEmpty()) {
        const QFont named = PageFont::ofDefaultAppearance(resource, size);
        return named.family() == resource ? PageFont::ofDefaultAppearance(QStringLiteral("Helvetica"), size) : named;
    }
    const QFont standard = PageFont::ofDefaultAppearance(name, size);
    const bool isKnown =
        standard.family() != name || name == QLatin1String("Helvetica") || name == QLatin1String("Courier");
    if (isKnown)
        return standard;
    return PageFont::nearest({name, (flags & boldFlag) != 0, (flags & italicFlag) != 0, (flags & serifFlag) != 0,
                              (flags & fixedPitchFlag) != 0},
                             size);
}

QByteArray FormFont::standardName() const {
    return PageFont::standardName(nearest(12));
}

QFont FormFont::ofField(double size) const {
    return isWritable() ? nearest(size) : PageFont::ofDefaultAppearance(QString::fromLatin1(standardName()), size);
}
