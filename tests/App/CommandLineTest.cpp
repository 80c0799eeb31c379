#include "CommandLine.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using Kind = CommandLine::Kind;

namespace {

CommandLine parsed(const QString& arguments, const QString& folder = QStringLiteral("/home/ann/papers")) {
    return CommandLine::parse(arguments.split(u'|'), folder);
}

TEST(CommandLine, filesBecomeAbsoluteAndKeepTheirOrder) {
    const CommandLine line = parsed(QStringLiteral("b.pdf|/tmp/a b.pdf|../c.pdf|file:///srv/d%20e.pdf||--|--help"));
    EXPECT_EQ(line.kind, Kind::run);
    const QList<QUrl> expected = {QUrl::fromLocalFile(QStringLiteral("/home/ann/papers/b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/tmp/a b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/home/ann/c.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/srv/d e.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/home/ann/papers/--help"))};
    EXPECT_EQ(line.files, expected);
}

TEST(CommandLine, aFileThatIsNamedLikeAnAddressIsAFile) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("web:")));
    QFile file(folder.filePath(QStringLiteral("web:/page.pdf")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    const QList<QUrl> expected = {QUrl::fromLocalFile(file.fileName()), QUrl(QStringLiteral("web:/other.pdf"))};
    EXPECT_EQ(parsed(QStringLiteral("web:/page.pdf|web:/other.pdf"), folder.path()).files, expected);
}

TEST(CommandLine, optionsAreVersionAndHelpOnly) {
    EXPECT_EQ(parsed(QStringLiteral("--version")).kind, Kind::version);
    EXPECT_EQ(parsed(QStringLiteral("a.pdf|--help")).kind, Kind::help);
    const CommandLine converter = parsed(QStringLiteral("--converter|text|-a"));
    EXPECT_EQ(converter.kind, Kind::converter);
    EXPECT_EQ(converter.conversion, (QStringList{QStringLiteral("text"), QStringLiteral("-a")}));
    const CommandLine mistaken = parsed(QStringLiteral("a.pdf|-platform"));
    EXPECT_EQ(mistaken.kind, Kind::mistake);
    EXPECT_TRUE(mistaken.mistake.contains(QStringLiteral("-platform")));
}

} // namespace
