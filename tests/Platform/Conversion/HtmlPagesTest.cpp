#include "HtmlPages.h"
#include "ConvertedPages.h"

#include <QBuffer>
#include <QImage>

class HtmlPagesTest : public ConvertedPages {
protected:
    QByteArray html(const QByteArray& text) { return converted(HtmlPages::write, QStringLiteral("web/a.html"), text); }

    static QByteArray picture(const QColor& color, QSize size = QSize(20, 10)) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(color);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        EXPECT_TRUE(buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG"));
        return bytes;
    }

    static qsizetype pictures(const QByteArray& pdf) { return PdfPrograms::unpacked(pdf).count("/Subtype /Image"); }
};

TEST_F(HtmlPagesTest, TextComesBackInItsOrder) {
    const struct {
        QByteArray html;
        const char* text;
    } cases[] = {
        {"<p>An <b>office</b></p><ol><li>one<li>two</ol><table cellpadding=9><tr><td>a<td>b</table>",
         "An office 1. one 2. two a b"},
        {"<style>p { color: red }</style><script>if (1 < 2) document.write('<p>no</p>')</script><p>yes", "yes"},
        {"<p>\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D</p><p>\xCE\x95\xCE\xBB\xCE\xBB</p>", "שלום Ελλ"},
        {"<meta charset='windows-1251'><p>\xDE\xE3", "Юг"},
        {"<meta charset='iso-8859-1'><p>caf\xE9", "café"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(words(html(text)), QString::fromUtf8(expected)) << text.constData();
    EXPECT_EQ(html(QByteArray("<p>\0</p>", 8)), "");
}

TEST_F(HtmlPagesTest, LinksCanBeClickedAndTheTitleIsTheDocuments) {
    const QByteArray pdf = PdfPrograms::unpacked(
        html("<title>A title</title><p><a href='https://example.org/a(b?c=1&d=2'>out</a> <a href='#there'>in</a> "
             "<a href='javascript:alert(1)'>no</a></p><h2 id='there'>There</h2>"));
    EXPECT_TRUE(pdf.contains("/URI (https://example.org/a\\(b?c=1&d=2)"));
    EXPECT_EQ(pdf.count("/Subtype /Link"), 2);
    EXPECT_EQ(pdf.count("/XYZ"), 1);
    EXPECT_TRUE(pdf.contains("/Title (A title)")) << pdf.left(2000).constData();
}

TEST_F(HtmlPagesTest, PicturesComeFromTheFolderOfTheFileOnly) {
    file(QStringLiteral("outside.png"), picture(Qt::red));
    file(QStringLiteral("web/beside.png"), picture(Qt::green));
    file(QStringLiteral("web/below/a b.png"), picture(Qt::blue));
    QFile::link(folder.filePath(QStringLiteral("outside.png")), folder.filePath(QStringLiteral("web/link.png")));
    file(QStringLiteral("web/plain.svg"), "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
                                          "<rect width='40' height='20' fill='red'/></svg>");
    const QByteArray data = "data:image/png;base64," + picture(Qt::yellow).toBase64();
    const struct {
        QByteArray address;
        qsizetype pictures;
    } cases[] = {
        {"beside.png", 1},
        {"below/a%20b.png", 1},
        {"./below/../beside.png", 1},
        {data, 1},
        {"plain.svg", 1},
        {"file://" + folder.filePath(QStringLiteral("web/beside.png")).toUtf8(), 1},
        {"../outside.png", 0},
        {"link.png", 0},
        {"file://" + folder.filePath(QStringLiteral("outside.png")).toUtf8(), 0},
        {"http://127.0.0.1:9/a.png", 0},
        {"missing.png", 0},
    };
    for (const auto& [address, count] : cases)
        EXPECT_EQ(pictures(html("<p>a <img src='" + address + "'> b")), count) << address.constData();
}
