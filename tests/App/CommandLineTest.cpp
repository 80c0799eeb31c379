#include "CommandLine.h"

#include <gtest/gtest.h>

using Kind = CommandLine::Kind;

namespace {

CommandLine parsed(const QString& arguments) {
    return CommandLine::parse(arguments.split(u'|'), QStringLiteral("/home/ann/papers"));
}

TEST(CommandLine, filesBecomeAbsoluteAndKeepTheirOrder) {
    const CommandLine line =
        parsed(QStringLiteral("b.pdf|/tmp/a b.pdf|../c.pdf|web:/page.pdf|file:///srv/d%20e.pdf||--|--help"));
    EXPECT_EQ(line.kind, Kind::run);
    const QList<QUrl> expected = {QUrl::fromLocalFile(QStringLiteral("/home/ann/papers/b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/tmp/a b.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/home/ann/c.pdf")),
                                  QUrl(QStringLiteral("web:/page.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/srv/d e.pdf")),
                                  QUrl::fromLocalFile(QStringLiteral("/home/ann/papers/--help"))};
    EXPECT_EQ(line.files, expected);
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
