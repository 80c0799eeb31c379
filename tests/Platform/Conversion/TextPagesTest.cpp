#include "TextPages.h"
#include "ConvertedPages.h"
#include "HtmlPages.h"
#include "PDFDocument.h"
#include "PDFPage.h"

#include <QStringList>

#include <utility>

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
        TextPages::write(m_folder.filePath(QStringLiteral("missing.txt")), m_folder.filePath(QStringLiteral("b"))));
    EXPECT_FALSE(TextPages::write(source, m_folder.filePath(QStringLiteral("missing/b.pdf"))));
}

/// What a font joins, takes apart or has no glyph for are found, by this program and by others.
TEST_F(TextPagesTest, LettersOfAnyScriptAreReadBackFromTheirGlyphs) {
    for (const char* written : {"😀 𝔸𝕓 🇩🇪", "👋🏽 wave", "été x\u0302\u0323 office a\u2011b",
                                "السلام عليكم لا إله محمّد", "בְּרֵאשִׁית שלום", "ນ້ຳ ຂຽນ ໄດ້"}) {
        SCOPED_TRACE(written);
        const QString text = QString::fromUtf8(written);
        const QByteArray line = QByteArray(written) + ' ';
        const QByteArray html = "<meta charset=utf-8><h1>" + line + "</h1><table><tr><td>" + line +
                                "<td><a href='#x'>" + line + "</a></table><p id=x style='text-align:center'>" + line;
        for (const auto& [pdf, count] : {std::pair(converted(TextPages::write, QStringLiteral("a.txt"), line), 1),
                                         {converted(HtmlPages::write, QStringLiteral("a.html"), html), 4}}) {
            EXPECT_EQ(words(pdf).count(text), count) << words(pdf).toStdString();
            const QString read = PDFDocument::fromData(pdf)->page(0)->string().simplified();
            EXPECT_EQ(read.count(text), count) << read.toStdString();
        }
    }
}

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
    expectWholeWords(converted(TextPages::write, QStringLiteral("a.md"), text), expected);
}

TEST_F(TextPagesTest, ALineWithoutSpacesIsBrokenAnywhere) {
    QString line;
    for (int i = 0; line.size() < 100'000; ++i)
        line += QStringLiteral("{%1}").arg(i);
    const QByteArray pdf = converted(TextPages::write, QStringLiteral("a.txt"), line.toUtf8());
    EXPECT_EQ(words(pdf).remove(QLatin1Char(' ')), line);
}
