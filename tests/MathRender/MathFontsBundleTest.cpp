#include "MathFontsBundle.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(MathFontsBundle, isFoundBesideAnInstalledProgramAndAtTheRootOfABuild) {
    const QTemporaryDir root;
    const auto made = [&](const char* path) {
        QString folder = root.filePath(QString::fromLatin1(path));
        EXPECT_TRUE(QDir().mkpath(folder));
        return folder;
    };
    const QString installed = made("usr/bin");
    EXPECT_EQ(MathFontsBundle::folderFor(installed),
              root.filePath(QStringLiteral("usr/share/quillo/mathFonts.bundle")));
    const QString shared = made("usr/share/quillo/mathFonts.bundle");
    made("usr/mathFonts.bundle"); // somebody else's
    EXPECT_EQ(MathFontsBundle::folderFor(installed), shared);

    const QString built = made("build/mathFonts.bundle");
    for (const char* program : {"build/bench", "build/src/App", "build/tests/PDFView/Annotations"})
        EXPECT_EQ(MathFontsBundle::folderFor(made(program)), built) << program;
}
