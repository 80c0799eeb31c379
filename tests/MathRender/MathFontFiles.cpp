#include "MathFontFiles.h"

#include "MathFontNames.h"
#include "MathFontsBundle.h"

#include <QFile>

#include <gtest/gtest.h>

QString MathFontFiles::latinModern() {
    return MathFontNames::latinModern;
}

QByteArray MathFontFiles::contents(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

void MathFontFiles::write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size()) << path.toStdString();
}

QByteArray MathFontFiles::fontBytes() {
    return contents(MathFontsBundle::fontPath(MathFontsBundle::folder(), latinModern()));
}

QByteArray MathFontFiles::propertyListBytes() {
    return contents(MathFontsBundle::propertyListPath(MathFontsBundle::folder(), latinModern()));
}

QByteArray MathFontFiles::trueTypeBytes() {
    return contents(QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
}

QByteArray MathFontFiles::withoutTable(QByteArray font, const QByteArray& tag) {
    // The directory at the start of the file has 16 bytes a table, its tag first.
    constexpr int headerSize = 12;
    constexpr int entrySize = 16;
    const int tableCount = static_cast<quint8>(font[4]) * 256 + static_cast<quint8>(font[5]);
    for (int offset = headerSize; offset < headerSize + tableCount * entrySize; offset += entrySize) {
        if (font.mid(offset, tag.size()) == tag)
            return font.replace(offset, tag.size(), "none");
    }
    ADD_FAILURE() << "There is no table " << tag.toStdString();
    return font;
}
