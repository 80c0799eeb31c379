#include "HtmlPages.h"
#include "ConvertedPages.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QHostAddress>
#include <QImage>
#include <QPalette>
#include <QSet>
#include <QTcpServer>

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

    /// The first page with a pixel for a point.
    static QImage drawn(const QByteArray& pdf) {
        return QImage::fromData(PdfPrograms::run(QStringLiteral("pdftoppm"),
                                                 {QStringLiteral("-png"), QStringLiteral("-singlefile"),
                                                  QStringLiteral("-r"), QStringLiteral("72"), QStringLiteral("FILE")},
                                                 pdf)
                                    .output,
                                "PNG");
    }

    static QSet<QRgb> colorsOf(const QImage& page) {
        QSet<QRgb> colors;
        for (int y = 0; y < page.height(); ++y)
            for (int x = 0; x < page.width(); ++x)
                colors.insert(page.pixel(x, y));
        return colors;
    }

    static qsizetype pictures(const QByteArray& pdf) { return PdfPrograms::unpacked(pdf).count("/Subtype /Image"); }
};

TEST_F(HtmlPagesTest, TextComesBackInItsOrder) {
    const struct {
        QByteArray html;
        QByteArray text;
    } cases[] = {
        {"<p>An <b>office</b></p><ol><li>one<li>two</ol><table cellpadding=9><tr><td>a<td>b</table>",
         "An office 1. one 2. two a b"},
        {"<style>p { color: red }</style><script>if (1 < 2) document.write('<p>no</p>')</script><p>yes", "yes"},
        {"<template><p>no</template><div hidden>no<div>no</div>no</div><p style='color:red; DISPLAY : none'>no</p><!-- "
         "> no -->"
         "<select><option>no</select><section>a</section><summary>b</summary><i>1</i> < 2 "
         "<q>c</q><textarea><b></textarea>",
         "a b 1 < 2 “c” <b>"},
        {"<p>\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D</p><p>\xCE\x95\xCE\xBB\xCE\xBB</p>", "שלום Ελλ"},
        {"<meta charset='windows-1251'><p>\xDE\xE3", "Юг"},
        {"<meta charset='iso-8859-1'><p>caf\xE9", "café"},
        {"<style>.gone, #away, p.note { display: none } h1 { visibility: hidden } .gone.back { display: block }"
         "@media print { b { display: none } } ul .gone { display: block }</style><p class='x gone'>no<p id=away>no"
         "<p class=note>no<div class=note>a</div><h1>no</h1><ul><li class=gone>no<ul><li>no</ul><li>b</ul><table><tr "
         "class=gone><td>no<tr><td>c</table><b>d</b><p class='gone back'>e<p class=gone style='display:block'>f",
         "a b c d e f"},
        {"<ol start=5><li>a<li value=9><p>b</p><li>c<ol type=i start=4><li>d</ol></ol><ol><li>e</ol>",
         "5. a 9. b 10. c iv. d 1. e"},
        {"<p>a <img src=none.png alt='a cat'> b <a href=x><img src=none.png alt=c></a>", "a a cat b c"},
        {"<p>" + QByteArray("one two ").repeated(20'000), QByteArray("one two ").repeated(20'000).trimmed()},
        {"", ""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(words(html(text)), QString::fromUtf8(expected)) << text.left(500).constData();
    QStringList expected;
    QByteArray text;
    for (int i = 0; i < 300; ++i) {
        text += "<p style='font-size:" + QByteArray::number(8 + i % 29) + "px'>";
        for (int word = 0; word <= i % 41; ++word) {
            expected += QStringLiteral("w%1").arg(i * 100 + word);
            text += expected.last().toLatin1() + ' ';
        }
    }
    expectWholeWords(html(text), expected);
    EXPECT_EQ(html(QByteArray("<p>\0</p>", 8)), "");
}

TEST_F(HtmlPagesTest, LinksCanBeClickedAndTheTitleIsTheDocuments) {
    const QByteArray pdf = PdfPrograms::unpacked(html(
        "<title>A <i>title</title><p><a href='https://example.org/a(b?c=1&amp;d=2'>out</a> <a href='#there'>in</a> "
        "<a href=javascript:alert(1)>no</a> <a href=b.html?x=1>beside</a></p><ul><li><a href=c.html>item</a></ul><h2 "
        "id='there'>There</h2>"));
    EXPECT_TRUE(pdf.contains("/URI (https://example.org/a\\(b?c=1&d=2)"));
    EXPECT_TRUE(pdf.contains("/URI (b.html?x=1)"));
    EXPECT_EQ(pdf.count("/Subtype /Link"), 4);
    static const QRegularExpression left(QStringLiteral("/Rect \\[\\s*(\\d+)"));
    QStringList places;
    for (auto found = left.globalMatch(QString::fromLatin1(pdf)); found.hasNext();)
        places += found.next().captured(1);
    EXPECT_EQ(places.value(3), QStringLiteral("84")); // where the text of the list starts
    EXPECT_EQ(pdf.count("/XYZ"), 1);
    EXPECT_TRUE(pdf.contains("/Title (A <i>title)")) << pdf.left(2000).constData();
}

/// Styles, drawings and elements may name other files and the network: none of that is opened.
TEST_F(HtmlPagesTest, NothingIsReadElsewhereAndNothingIsLoaded) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QByteArray network = "//127.0.0.1:" + QByteArray::number(server.serverPort()) + "/";
    const QByteArray outside = file(QStringLiteral("outside.png"), picture(Qt::red)).toUtf8();
    const QByteArray style = file(QStringLiteral("outside.css"), "p, text { color: red; fill: red }").toUtf8();
    file(QStringLiteral("web/beside.css"), "@import url(../outside.css); i { color: blue; font-size: 60px }");
    const QByteArray drawing =
        "<svg xmlns='http://www.w3.org/2000/svg' xmlns:x='http://www.w3.org/1999/xlink' width='200' height='60'>"
        "<style>@import url(" +
        style +
        ");</style><rect width='9' height='9' fill='lime'/><image width='60' height='60' "
        "x:href='" +
        outside + "'/><image x='99' width='60' height='60' href='http:" + network + "a.png'/><text y='50'>";
    file(QStringLiteral("web/drawing.svg"), "<?xml version='1.0'?><?xml-stylesheet href='" + style +
                                                "'?><!DOCTYPE svg [<!ENTITY e SYSTEM '" + style + "'>]>" + drawing +
                                                "text</text></svg>");
    const QByteArray pdf =
        html("<link rel=stylesheet href=beside.css><link rel=stylesheet href='../outside.css'>"
             "<link rel=stylesheet href='http:" +
             network + "a.css'><style>@import url(" + style + "); body { background-image: url(http:" + network +
             "b.png) }</style>"
             "<body background='" +
             outside +
             "'><p>text <i>blue</i><img src=drawing.svg>"
             "<iframe src='" +
             style + "'></iframe>" + drawing + "</text></svg><table><tr><td background='" + outside +
             "'>cell<img src='" + network + "c.png'></table>");
    EXPECT_FALSE(server.waitForNewConnection(0));
    EXPECT_EQ(words(pdf), QStringLiteral("text blue cell"));
    const QSet<QRgb> colors = colorsOf(drawn(pdf));
    EXPECT_FALSE(colors.contains(qRgb(255, 0, 0)));
    EXPECT_TRUE(colors.contains(qRgb(0, 255, 0))); // what the drawing holds itself
    EXPECT_TRUE(colors.contains(qRgb(0, 0, 255))); // the style beside the file
}

TEST_F(HtmlPagesTest, PicturesComeFromTheFolderOfTheFileOnly) {
    file(QStringLiteral("outside.png"), picture(Qt::red));
    file(QStringLiteral("web/beside.png"), picture(Qt::green));
    file(QStringLiteral("web/below/a b.png"), picture(Qt::blue));
    QFile::link(m_folder.filePath(QStringLiteral("outside.png")), m_folder.filePath(QStringLiteral("web/link.png")));
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
        {"file://" + m_folder.filePath(QStringLiteral("web/beside.png")).toUtf8(), 1},
        {"../outside.png", 0},
        {"link.png", 0},
        {"file://" + m_folder.filePath(QStringLiteral("outside.png")).toUtf8(), 0},
        {"http://127.0.0.1:9/a.png", 0},
        {"missing.png", 0},
    };
    for (const auto& [address, count] : cases)
        EXPECT_EQ(pictures(html("<p>a <img src='" + address + "'> b")), count) << address.constData();
}

/// The desktop's colours and the page's must not leave text that can't be read on paper.
TEST_F(HtmlPagesTest, TextIsDarkOnWhiteAndWideThingsFit) {
    const QPalette before = QGuiApplication::palette();
    QGuiApplication::setPalette(QPalette(Qt::white, Qt::black));
    file(QStringLiteral("web/wide.png"), picture(QColor(255, 0, 255), QSize(3000, 400)));
    const QByteArray pdf =
        html("<body bgcolor='#ff0000' text='#ffffff'><h1>Title</h1><p style='background:#00ff00'>text "
             "<span style='background:#0000ff'>marked</span></p><img src=wide.png><table width=2000>"
             "<tr><td width=1900>cell<td bgcolor='#00ffff'>other</table><ul><li>" +
             QByteArray(200, 'x') + "</ul>");
    QGuiApplication::setPalette(before);
    const QImage page = drawn(pdf);
    ASSERT_EQ(page.size(), QSize(612, 792));
    const QSet<QRgb> colors = colorsOf(page);
    int dark = 0;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x) {
            const QRgb color = page.pixel(x, y);
            dark += qGray(color) < 64 ? 1 : 0;
            EXPECT_TRUE(color == qRgb(255, 255, 255) || QRect(53, 53, 506, 686).contains(x, y)) << x << ' ' << y;
        }
    EXPECT_GT(dark, 500);
    for (const QRgb background : {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255)})
        EXPECT_FALSE(colors.contains(background)) << background;
    EXPECT_TRUE(colors.contains(qRgb(0, 255, 255)));    // a cell keeps its background
    EXPECT_LT(page.pixelColor(555, 160).greenF(), 0.1); // the picture reaches from margin to margin
}
