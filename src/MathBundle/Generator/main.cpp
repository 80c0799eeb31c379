#include "MathTableExtractor.h"
#include "PropertyList.h"

#include <QFile>
#include <QSaveFile>

#include <cstdio>
#include <exception>

/// Usage: math_plist FONT PLIST
/// Writes the property list of a math font. The build runs it for each font of the bundle.
int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("Usage: math_plist FONT PLIST\n", stderr);
        return 2;
    }
    QFile font(QFile::decodeName(argv[1]));
    if (!font.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "math_plist: %s: %s\n", argv[1], qUtf8Printable(font.errorString()));
        return 1;
    }
    try {
        const QByteArray xml = PropertyList::toXml(propertyListOfMathTable(font.readAll(), font.fileName()));
        QSaveFile list(QFile::decodeName(argv[2]));
        if (!list.open(QIODevice::WriteOnly) || list.write(xml) != xml.size() || !list.commit()) {
            std::fprintf(stderr, "math_plist: %s: %s\n", argv[2], qUtf8Printable(list.errorString()));
            return 1;
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "math_plist: %s\n", error.what());
        return 1;
    }
    return 0;
}
