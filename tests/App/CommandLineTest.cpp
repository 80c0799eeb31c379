#include "CommandLine.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using Kind = CommandLine::Kind;

TEST(CommandLine, filesBecomeAbsoluteAndKeepTheirOrder) {
    const CommandLine line =
        CommandLine::parse({QStringLiteral("b.pdf"), QStringLiteral("/tmp/a b.pdf"), QStringLiteral("../c.pdf"),
                            QStringLiteral("file:///srv/d%20e.pdf"), QString()},
                           QStringLiteral("/home/ann/papers"));
    EXPECT_EQ(line.kind, Kind::run);
    const QList<QUrl> expected = {QUrl::fromLocalFile(QStringLiteral("/home/ann/papers/b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/tmp/a b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/home/ann/c.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/srv/d e.pdf"))};
    EXPECT_EQ(line.files, expected);
}

TEST(CommandLine, aFileThatIsNamedLikeAnAddressIsAFile) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("web:")));
    QFile file(folder.filePath(QStringLiteral("web:/page.pdf")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));

    EXPECT_EQ(CommandLine::parse({QStringLiteral("web:/page.pdf")}, folder.path()).files.constFirst(),
              QUrl::fromLocalFile(file.fileName()));
    EXPECT_EQ(CommandLine::parse({QStringLiteral("web:/other.pdf")}, folder.path()).files.constFirst(),
              QUrl(QStringLiteral("web:/other.pdf")));
}

TEST(CommandLine, optionsAreVersionAndHelpOnly) {
    EXPECT_EQ(CommandLine::parse({QStringLiteral("--version")}, QStringLiteral("/")).kind, Kind::version);
    EXPECT_EQ(CommandLine::parse({QStringLiteral("a.pdf"), QStringLiteral("--help")}, QStringLiteral("/")).kind,
              Kind::help);

    const CommandLine converter =
        CommandLine::parse({QStringLiteral("--converter"), QStringLiteral("text"), QStringLiteral("-a")}, {});
    EXPECT_EQ(converter.kind, Kind::converter);
    EXPECT_EQ(converter.conversion, (QStringList{QStringLiteral("text"), QStringLiteral("-a")}));
    const CommandLine mistaken =
        CommandLine::parse({QStringLiteral("a.pdf"), QStringLiteral("-platform")}, QStringLiteral("/"));
    EXPECT_EQ(mistaken.kind, Kind::mistake);
    EXPECT_TRUE(mistaken.mistake.contains(QStringLiteral("-platform")));

    const CommandLine afterDashes =
        CommandLine::parse({QStringLiteral("--"), QStringLiteral("--help")}, QStringLiteral("/folder"));
    EXPECT_EQ(afterDashes.kind, Kind::run);
    EXPECT_EQ(afterDashes.files, QList<QUrl>{QUrl::fromLocalFile(QStringLiteral("/folder/--help"))});
}
