#include "CommandLine.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using Kind = CommandLine::Kind;

TEST(CommandLine, filesBecomeAbsoluteAndKeepTheirOrder) {
    const CommandLine line =
        CommandLine::parse({u"b.pdf"_qs, u"/tmp/a b.pdf"_qs, u"../c.pdf"_qs, u"file:///srv/d%20e.pdf"_qs, QString()},
                           u"/home/ann/papers"_qs);
    EXPECT_EQ(line.kind, Kind::run);
    const QList<QUrl> expected = {QUrl::fromLocalFile(u"/home/ann/papers/b.pdf"_qs),
                                  QUrl::fromLocalFile(u"/tmp/a b.pdf"_qs), QUrl::fromLocalFile(u"/home/ann/c.pdf"_qs),
                                  QUrl::fromLocalFile(u"/srv/d e.pdf"_qs)};
    EXPECT_EQ(line.files, expected);
}

TEST(CommandLine, aFileThatIsNamedLikeAnAddressIsAFile) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"web:"_qs));
    QFile file(folder.filePath(u"web:/page.pdf"_qs));
    ASSERT_TRUE(file.open(QFile::WriteOnly));

    EXPECT_EQ(CommandLine::parse({u"web:/page.pdf"_qs}, folder.path()).files.constFirst(),
              QUrl::fromLocalFile(file.fileName()));
    EXPECT_EQ(CommandLine::parse({u"web:/other.pdf"_qs}, folder.path()).files.constFirst(), QUrl(u"web:/other.pdf"_qs));
}

TEST(CommandLine, optionsAreVersionAndHelpOnly) {
    EXPECT_EQ(CommandLine::parse({u"--version"_qs}, u"/"_qs).kind, Kind::version);
    EXPECT_EQ(CommandLine::parse({u"a.pdf"_qs, u"--help"_qs}, u"/"_qs).kind, Kind::help);

    const CommandLine mistaken = CommandLine::parse({u"a.pdf"_qs, u"-platform"_qs}, u"/"_qs);
    EXPECT_EQ(mistaken.kind, Kind::mistake);
    EXPECT_TRUE(mistaken.mistake.contains(u"-platform"_qs));

    const CommandLine afterDashes = CommandLine::parse({u"--"_qs, u"--help"_qs}, u"/folder"_qs);
    EXPECT_EQ(afterDashes.kind, Kind::run);
    EXPECT_EQ(afterDashes.files, QList<QUrl>{QUrl::fromLocalFile(u"/folder/--help"_qs)});
}
