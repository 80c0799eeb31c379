#include "PlainText.h"

#include <gtest/gtest.h>

namespace {

TEST(PlainText, LeavesNothingOfWordsThatAPlaceWouldObey) {
    const QString rightToLeft(QChar(0x202E));
    const QString accent(QChar(0x0301));
    const struct {
        QString (*make)(const QString&);
        QString words;
        QString expected;
    } cases[] = {
        {PlainText::line, QStringLiteral("two  blanks & <b>"), QStringLiteral("two  blanks & <b>")},
        {PlainText::line, QStringLiteral("a\nb\tc\x07") + rightToLeft + u'd' + QChar(0x2028),
         QStringLiteral("a b cd ")},
        {PlainText::line, u'e' + accent.repeated(40), u'e' + accent.repeated(30)},
        {PlainText::line, QString(1000, u'a'), QString(499, u'a') + u'…'},
        {PlainText::line, QStringLiteral("\U0001F600").repeated(400),
         QStringLiteral("\U0001F600").repeated(249) + u'…'},
        {PlainText::line, rightToLeft.repeated(10'000) + u'a', QStringLiteral("…")},
        {PlainText::line, QString(QChar(0x202A)) + QChar(0x2066) + QChar(0x2069) + u'a', QStringLiteral("a")},
        {PlainText::name, QString(50, u'a') + QString(50, u'b'), QString(40, u'a') + u'…' + QString(39, u'b')},
        {PlainText::paragraphs, QStringLiteral("a\n\nb\r\n"), QStringLiteral("a\n\nb \n")},
        {PlainText::paragraphs, QString(70, u'a'), QString(60, u'a') + QChar(0x200B) + QString(10, u'a')},
        {PlainText::paragraphs, QString(61, u'a').replace(60, 1, accent), QString(61, u'a').replace(60, 1, accent)},
        {PlainText::toolTip, QStringLiteral("R&D"), QStringLiteral("R&D")},
        {PlainText::toolTip, QStringLiteral("<img src=a>\nR&D"),
         QStringLiteral("<qt>&lt;img src=a&gt;<br>R&amp;D</qt>")},
        {PlainText::withoutMnemonics, QStringLiteral("R&D\n&&"), QStringLiteral("R&&D &&&&")},
        {PlainText::windowTitle, QStringLiteral("a[*]\n[*]"), QStringLiteral("a[*][*] [*][*]")},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.make(each.words), each.expected) << each.words.left(80).toStdString();
}

} // namespace
