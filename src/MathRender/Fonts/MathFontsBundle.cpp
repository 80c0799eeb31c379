#include "MathFontsBundle.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>

const QString& MathFontsBundle::folder() {
    // Not by way of the application object: fonts may be needed before there is one.
    static const QString folder =
        folderFor(QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).symLinkTarget()).path());
    return folder;
}

QString MathFontsBundle::folderFor(const QString& programFolder) {
    const QStringList places{QStringLiteral("../share/quillo/mathFonts.bundle"), QStringLiteral("../mathFonts.bundle"),
                             QStringLiteral("../../mathFonts.bundle"), QStringLiteral("../../../mathFonts.bundle")};
    const QDir start(programFolder);
    const auto found =
        std::find_if(places.begin(), places.end(), [&](const QString& place) { return start.exists(place); });
    return QDir::cleanPath(start.absoluteFilePath(found == places.end() ? places.front() : *found));
}

QString MathFontsBundle::fontPath(const QString& bundleFolder, const QString& fontName) {
    return bundleFolder + QLatin1Char('/') + fontName + QStringLiteral(".otf");
}

QString MathFontsBundle::propertyListPath(const QString& bundleFolder, const QString& fontName) {
    return bundleFolder + QLatin1Char('/') + fontName + QStringLiteral(".plist");
}
