#include "AnnotationFont.h"

#include "EnumerationTable.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>

#include <algorithm>

std::span<const AnnotationFontInfo> allAnnotationFonts() {
    using enum AnnotationFont;
    static const AnnotationFontInfo fonts[] = {
        {system, QStringLiteral("system"), QStringLiteral("Sans")},
        {serif, QStringLiteral("serif"), QStringLiteral("Serif")},
        {mono, QStringLiteral("mono"), QStringLiteral("Mono")},
        {rounded, QStringLiteral("rounded"), QStringLiteral("Rounded")},
        {marker, QStringLiteral("marker"), QStringLiteral("Handwritten")},
    };
    return fonts;
}

const AnnotationFontInfo& info(AnnotationFont font) {
    return EnumerationTable::row(allAnnotationFonts(), &AnnotationFontInfo::font, font);
}

std::optional<AnnotationFont> annotationFontFromRawValue(QStringView rawValue) {
    return EnumerationTable::fromRawValue(allAnnotationFonts(), &AnnotationFontInfo::font, rawValue);
}

/// The first of `families` that is installed, or an empty string.
static QString installedFamily(const QStringList& families) {
    const auto found = std::find_if(families.begin(), families.end(),
                                    [](const QString& family) { return QFontDatabase::hasFamily(family); });
    return found == families.end() ? QString() : *found;
}

/// Measured, since Qt goes by a mark in the font's file that some monospaced fonts lack.
static bool isFixedPitch(const QFont& font) {
    const QFontMetricsF metrics(font);
    return qFuzzyCompare(metrics.horizontalAdvance(QLatin1Char('i')), metrics.horizontalAdvance(QLatin1Char('W')));
}

/// The desktop's fixed-pitch font, or where it has set one that isn't, the first that is installed.
static QFont fixedPitchFont() {
    const QFont desktop = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (isFixedPitch(desktop))
        return desktop;
    const QStringList families = QFontDatabase::families(QFontDatabase::Latin);
    for (const QString& family : families) {
        if (QFontDatabase::isFixedPitch(family) && QFontDatabase::isSmoothlyScalable(family))
            return QFont(family);
    }
    return desktop;
}

QFont platformFont(AnnotationFont font, double size, QFont::Weight weight) {
    QFont result = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    switch (font) {
    case AnnotationFont::system:
        break;
    case AnnotationFont::serif:
        // The font configuration of the desktop knows what its serif font is; the hint chooses one where it doesn't.
        result.setFamilies({QStringLiteral("serif")});
        result.setStyleHint(QFont::Serif);
        break;
    case AnnotationFont::mono:
        result = fixedPitchFont();
        break;
    case AnnotationFont::rounded:
        if (const QString family = installedFamily({QStringLiteral("Nunito"), QStringLiteral("Varela Round"),
                                                    QStringLiteral("Quicksand"), QStringLiteral("Comfortaa")});
            !family.isEmpty())
            result.setFamilies({family});
        break;
    case AnnotationFont::marker:
        if (const QString family = installedFamily({QStringLiteral("Noteworthy"), QStringLiteral("Comic Neue")});
            !family.isEmpty()) {
            result.setFamilies({family});
            weight = QFont::Bold; // the face is bold, whatever weight is asked for
        }
        break;
    }
    result.setPointSizeF(size);
    result.setWeight(weight);
    return result;
}
