#include "DroppedFile.h"

#include "TestPdf.h"

#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

#include <gtest/gtest.h>

/// Ends this process after two drops, one of which the reader edits.
[[noreturn]] static void dropAndEnd() {
    qputenv("TMPDIR", qgetenv("TEST_DROPS"));
    const QTemporaryDir madeForDrop;
    const auto keep = [&](const QString& name) {
        return DroppedFile::keep(TestPdf().write(madeForDrop.path(), name)).value_or(QUrl()).toLocalFile();
    };
    const QString read = keep(QStringLiteral("read.pdf"));
    QFile edited(keep(QStringLiteral("edited.pdf")));
    const bool isKept = QFile::exists(read) && edited.open(QFile::Append) && edited.write("more") > 0;
    edited.close();
    std::exit(isKept ? EXIT_SUCCESS : EXIT_FAILURE);
}

TEST(DroppedFileDeathTest, copiesGoWhenTheProgramEndsUnlessTheyWereEdited) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // the process that ends is a new one
    const QTemporaryDir folder;
    if (!qEnvironmentVariableIsSet("TEST_DROPS")) // that process has its own folders otherwise
        qputenv("TEST_DROPS", folder.path().toUtf8());
    EXPECT_EXIT(dropAndEnd(), testing::ExitedWithCode(EXIT_SUCCESS), "");
    qunsetenv("TEST_DROPS");
    QStringList left;
    for (QDirIterator files(folder.path(), QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
        const QString path = files.next();
        if (path.contains(QLatin1String("/quillo-drop-")))
            left.append(files.fileName());
    }
    EXPECT_EQ(left, QStringList{QStringLiteral("edited.pdf")});
}
