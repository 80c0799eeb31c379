#include "TextPages.h"
#include "ConvertedPages.h"

#include <QRegularExpression>
#include <QStringList>

using TextPagesTest = ConvertedPages;

TEST_F(TextPagesTest, TextInAnyEncodingComesBackAndOtherFilesAreRefused) {
    const auto utf16 = [](const char* text, bool isBigEndian) {
        QByteArray bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const QChar unit : QString::fromUtf8(text))
            bytes += isBigEndian ? QByteArray{1, char(unit.row())} + char(unit.cell())
                                 : QByteArray{1, char(unit.cell())} + char(unit.row());
        return bytes;
    };
    const struct {
        QByteArray bytes;
        const char* text; ///< null when refused
    } cases[] = {
        {"Caf\xC3\xA9 office \xCE\x95\xCE\xBB\xCE\xBB", "Café office Ελλ"},
        {"\xEF\xBB\xBFwith a mark", "with a mark"},
        {utf16("Größe Юг", false), "Größe Юг"},
        {utf16("Größe Юг", true), "Größe Юг"},
        {"Caf\xE9 \x93quoted\x94", "Café “quoted”"},
        {"one\r\n\r\ntwo\rthree\ftab\tend\x1b", "one two three tab end"},
        {"שלום", "שלום"},
        {"مكتبك ثم", "مكتبك ثم"},
        {"", ""},
        {QByteArray("a\0b", 3), nullptr},
        {"\x89PNG\r\n\x1a\n\x01\x02 and so on", nullptr},
        {QByteArray("\xFF\xFE\x00\xD8\x20\x00", 6), nullptr},
    };
    for (const auto& [bytes, text] : cases) {
        const QByteArray pdf = converted(TextPages::write, QStringLiteral("a.txt"), bytes);
        EXPECT_EQ(pdf.isEmpty(), text == nullptr) << bytes.constData();
        EXPECT_EQ(words(pdf), QString::fromUtf8(text)) << bytes.constData();
        const auto fonts = PdfPrograms::run(QStringLiteral("pdffonts"), {QStringLiteral("FILE")}, pdf).output;
        EXPECT_EQ(fonts.count(" yes "), 2 * fonts.count("CID TrueType")) << fonts.constData(); // embedded, readable
    }
    const QString source = file(QStringLiteral("b.txt"), "text");
    EXPECT_FALSE(
        TextPages::write(folder.filePath(QStringLiteral("missing.txt")), folder.filePath(QStringLiteral("b"))));
    EXPECT_FALSE(TextPages::write(source, folder.filePath(QStringLiteral("missing/b.pdf"))));
}

/// Numbered lines, some too wide for a page; every word once and in its order, whole and inside of the margins.
TEST_F(TextPagesTest, NoWordIsLostOrCutBetweenPages) {
    QByteArray text;
    QStringList expected;
    for (int i = 0; i < 400; ++i) {
        for (int word = 0; word < 1 + i % 37; ++word) {
            expected += QString::number(i * 100 + word);
            text += expected.last().toLatin1() + (word % 7 == 0 ? "\t" : " ");
        }
        text += i % 5 == 0 ? "\n\n" : "\n";
    }
    const QByteArray pdf = converted(TextPages::write, QStringLiteral("a.md"), text);
    EXPECT_EQ(words(pdf).split(QLatin1Char(' ')), expected);
    const QString boxes =
        QString::fromUtf8(PdfPrograms::run(QStringLiteral("pdftotext"),
                                           {QStringLiteral("-bbox"), QStringLiteral("FILE"), QStringLiteral("-")}, pdf)
                              .output);
    static const QRegularExpression box(
        QStringLiteral("xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" yMax=\"([\\d.]+)\""));
    for (auto found = box.globalMatch(boxes); found.hasNext();) {
        const QRegularExpressionMatch word = found.next();
        EXPECT_GE(word.captured(1).toDouble(), 53.9);
        EXPECT_GE(word.captured(2).toDouble(), 53.9);
        EXPECT_LE(word.captured(3).toDouble(), 558.1);
        EXPECT_LE(word.captured(4).toDouble(), 738.1);
    }
    EXPECT_EQ(boxes.count(QStringLiteral("<page width=\"612.000000\" height=\"792.000000\">")), 15);
}

TEST_F(TextPagesTest, ALineWithoutSpacesIsBrokenAnywhere) {
    QString line;
    for (int i = 0; line.size() < 100'000; ++i)
        line += QStringLiteral("{%1}").arg(i);
    const QByteArray pdf = converted(TextPages::write, QStringLiteral("a.txt"), line.toUtf8());
    EXPECT_EQ(words(pdf).remove(QLatin1Char(' ')), line);
}
