#include "OfficeConverter.h"

#include "OfficeFiles.h"

#include <QDir>
#include <QImage>
#include <QTcpServer>
#include <QTemporaryDir>

#include <chrono>
#include <thread>

using OfficeConverter::Outcome;
using namespace std::chrono_literals;

namespace {

class OfficeConverterTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const { return OfficeFiles::write(path(name), bytes); }

    /// Of a file in the folder; nothing else changes there, whatever comes of it, and no temporary file stays.
    Outcome convert(const QString& source, const std::stop_token& stop = {}) const {
        QFile::remove(path(QStringLiteral("pages.pdf")));
        const QStringList before = QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden);
        const Outcome outcome = OfficeConverter::convert(source, path(QStringLiteral("pages.pdf")), stop);
        QStringList after = QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden);
        EXPECT_EQ(after.removeAll(QStringLiteral("pages.pdf")), outcome == Outcome::converted ? 1 : 0);
        EXPECT_EQ(after, before);
        EXPECT_EQ(QDir(QDir::tempPath()).entryList({QStringLiteral("quillo-office-*")}), QStringList());
        return outcome;
    }
    QString text() const {
        return OfficeFiles::output(QStringLiteral("pdftotext"),
                                   {path(QStringLiteral("pages.pdf")), QStringLiteral("-")});
    }

    /// A document of one paragraph, with these relations to other files.
    static QByteArray document(const QByteArray& body, const QByteArray& relations = {}) {
        const QByteArray xml = "<?xml version=\"1.0\"?>";
        const QByteArray office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
        return OfficeFiles::package(
            {{"[Content_Types].xml",
              xml + "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
                    "<Default Extension=\"rels\" "
                    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
                    "<Override PartName=\"/word/document.xml\" "
                    "ContentType=\"application/vnd.openxmlformats-officedocument."
                    "wordprocessingml.document.main+xml\"/></Types>"},
             {"_rels/.rels",
              xml +
                  "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                  "<Relationship Id=\"r\" Type=\"" +
                  office + "/officeDocument\" Target=\"word/document.xml\"/></Relationships>"},
             {"word/document.xml",
              xml +
                  "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
                  "xmlns:r=\"" +
                  office + "\"><w:body><w:p>" + body + "</w:p></w:body></w:document>"},
             {"word/_rels/document.xml.rels",
              xml + "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
                  relations + "</Relationships>"}});
    }

    const QTemporaryDir m_folder;
};

constexpr auto page = R"(<!DOCTYPE html><meta charset="utf-8"><h1>Größe und Maß</h1>
<p>See <a href="https://example.org/there">the other page</a>.</p>)";

} // namespace

TEST_F(OfficeConverterTest, documentsOfEveryFormatBecomeTheirPages) {
    const QString source = write(QStringLiteral("report.html"), page);
    const QString docx = OfficeFiles::converted(source, QStringLiteral("docx"), QStringLiteral("MS Word 2007 XML"));
    const QString doc = OfficeFiles::converted(docx, QStringLiteral("doc"));
    const QString rtf = OfficeFiles::converted(docx, QStringLiteral("rtf"));
    const QString small =
        write(QStringLiteral("small.rtf"), R"({\rtf1\ansi Gr\'f6\'dfe und Ma\'df, {\field{\*\fldinst{)"
                                           R"(HYPERLINK "https://example.org/there"}}{\fldrslt{page}}}})");
    const QString web = write(QStringLiteral("web page.doc"), page);
    const QString other = write(QStringLiteral("rich.DOC"), OfficeFiles::bytesOf(rtf));
    for (const QString& file : {docx, doc, rtf, small, web, other}) {
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(convert(file), Outcome::converted);
        EXPECT_TRUE(text().contains(QStringLiteral("Größe und Maß"))) << text().toStdString();
        EXPECT_TRUE(OfficeFiles::bytesOf(path(QStringLiteral("pages.pdf"))).contains("https://example.org/there"));
    }
    // The head of the text says that it is protected by a password.
    QByteArray locked = OfficeFiles::bytesOf(doc);
    const qsizetype head = locked.indexOf("\xec\xa5\x01\x01");
    ASSERT_GT(head, 0);
    locked[head + 11] = char(locked.at(head + 11) | 1);
    EXPECT_EQ(convert(write(QStringLiteral("locked.doc"), locked)), Outcome::failed);
}

TEST_F(OfficeConverterTest, aFolderOfRichTextKeepsItsPictures) {
    const QString folder = path(QStringLiteral("memo.rtfd"));
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_EQ(convert(folder), Outcome::failed);
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(folder + QStringLiteral("/Red é.tiff"), "BMP"));
    ASSERT_TRUE(picture.save(path(QStringLiteral("outside.png"))));
    OfficeFiles::write(
        folder + QStringLiteral("/TXT.rtf"),
        R"({\rtf1\ansi\ansicpg1252 Before {{\NeXTGraphic Red \'e9.tiff \width600 \height400 \noorient}\'ac} )"
        R"(and {{\NeXTGraphic ../outside.png \width600 \height400}\'ac} after.})");
    EXPECT_EQ(convert(folder), Outcome::converted);
    EXPECT_EQ(text().simplified(), QStringLiteral("Before and after."));
    const QString pictures =
        OfficeFiles::output(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path(QStringLiteral("pages.pdf"))});
    EXPECT_EQ(pictures.count(QStringLiteral(" 30 ")), 1) << pictures.toStdString();
    EXPECT_EQ(pictures.count(u'\n'), 3) << pictures.toStdString(); // two of them are headings
}

TEST_F(OfficeConverterTest, whatIsNotWhatItsNameSaysFails) {
    QByteArray unpacked = document("<w:r><w:t>Words</w:t></w:r>");
    const QByteArray picture = "\x89PNG\r\n\x1a\n" + QByteArray(2000, 'x');
    QByteArray cut = unpacked;
    cut.truncate(unpacked.size() / 2);
    QByteArray broken = unpacked;
    broken.replace("<w:body>", "<w:b<<<>");
    const struct {
        const char* name;
        QByteArray bytes;
    } files[] = {
        {"picture.docx", picture},
        {"words.docx", "Only words.\n"},
        {"words.doc", "Only words.\n"},
        {"words.rtf", "Only words.\n"},
        {"empty.doc", ""},
        {"page.docx", page},
        {"cut.docx", cut},
        {"broken.docx", broken},
        {"sheet.docx", OfficeFiles::package({{"[Content_Types].xml", ""}, {"xl/workbook.xml", ""}})},
        {"bomb.docx", OfficeFiles::package({{"[Content_Types].xml", ""}, {"word/document.xml", ""}}, 3000000000)},
        {"protected.docx", "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + QByteArray(5000, '\0')}};
    for (const auto& [name, bytes] : files)
        EXPECT_EQ(convert(write(QString::fromLatin1(name), bytes)), Outcome::failed) << name;
    EXPECT_EQ(convert(path(QStringLiteral("missing.docx"))), Outcome::failed);
    EXPECT_EQ(convert(write(QStringLiteral("sound.docx"), unpacked)), Outcome::converted);
}

TEST_F(OfficeConverterTest, nothingOutsideOfTheDocumentIsReached) {
    QTcpServer server;
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    const QByteArray address = "http://127.0.0.1:" + QByteArray::number(server.serverPort()) + "/secret.png";
    write(QStringLiteral("secret.txt"), "Confidential");
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(path(QStringLiteral("secret.png"))));
    const QByteArray folder = "file://" + m_folder.path().toUtf8();
    const QByteArray office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
    const auto drawing = [](const QByteArray& id) {
        return "<w:r><w:drawing><wp:inline xmlns:wp=\"http://schemas.openxmlformats.org/drawingml/2006/"
               "wordprocessingDrawing\"><wp:extent cx=\"1000000\" cy=\"1000000\"/><wp:docPr id=\"1\" name=\"x\"/>"
               "<a:graphic xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><a:graphicData "
               "uri=\"http://schemas.openxmlformats.org/drawingml/2006/picture\"><pic:pic "
               "xmlns:pic=\"http://schemas.openxmlformats.org/drawingml/2006/picture\"><pic:nvPicPr><pic:cNvPr "
               "id=\"1\" name=\"x\"/><pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:link=\"" +
               id +
               "\"/><a:stretch><a:fillRect/></a:stretch></pic:blipFill><pic:spPr><a:xfrm><a:off x=\"0\" y=\"0\"/>"
               "<a:ext cx=\"1000000\" cy=\"1000000\"/></a:xfrm><a:prstGeom prst=\"rect\"/></pic:spPr></pic:pic>"
               "</a:graphicData></a:graphic></wp:inline></w:drawing></w:r>";
    };
    const auto relation = [&office](const QByteArray& id, const QByteArray& target) {
        return "<Relationship Id=\"" + id + "\" Type=\"" + office + "/image\" Target=\"" + target +
               "\" TargetMode=\"External\"/>";
    };
    const auto field = [](const QByteArray& instruction) {
        return "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText>" + instruction +
               "</w:instrText></w:r><w:r><w:fldChar w:fldCharType=\"separate\"/></w:r><w:r><w:t>old</w:t></w:r>"
               "<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>";
    };
    const struct {
        const char* name;
        QByteArray bytes;
    } files[] = {
        {"pictures.docx", document("<w:r><w:t>Words</w:t></w:r>" + drawing("p1") + drawing("p2"),
                                   relation("p1", address) + relation("p2", folder + "/secret.png"))},
        {"fields.docx", document("<w:r><w:t>Words</w:t></w:r>" + field("INCLUDETEXT \"" + folder + "/secret.txt\"") +
                                 field("INCLUDEPICTURE \"" + address + "\" \\d"))},
        {"page.doc", "<html><link rel=stylesheet href=\"" + address + "\"><p>Words<img src=\"" + address +
                         "\"><img src=\"" + folder + "/secret.png\"><img src=secret.png><iframe src=\"" + folder +
                         "/secret.txt\"></iframe><object data=\"" + folder +
                         "/secret.txt\"></object><script>location='" + address + "'</script>"},
        {"object.rtf", R"({\rtf1 Words {\object\objautlink\objupdate\rsltpict{\*\objclass Package}{\*\objdata 00}})"
                       R"({\field{\*\fldinst INCLUDEPICTURE ")" +
                           address + R"(" \\d}{\fldrslt old}}{\field{\*\fldinst INCLUDETEXT ")" + folder +
                           R"(/secret.txt"}{\fldrslt old}}})"},
        {"entity.docx",
         document("<w:r><w:t>Words</w:t></w:r>")
             .replace("<?xml version=\"1.0\"?><w:doc", "<!DOCTYPE x SYSTEM \"" + address + "\"><w:doc")}};
    for (const auto& [name, bytes] : files) {
        SCOPED_TRACE(name);
        const Outcome outcome = convert(write(QString::fromLatin1(name), bytes));
        EXPECT_FALSE(server.hasPendingConnections());
        EXPECT_FALSE(server.waitForNewConnection(50));
        if (QByteArray(name) == "entity.docx") // the table of contents no longer fits
            continue;
        EXPECT_EQ(outcome, Outcome::converted);
        EXPECT_TRUE(text().contains(QStringLiteral("Words")));
        EXPECT_FALSE(text().contains(QStringLiteral("Confidential")));
        EXPECT_FALSE(OfficeFiles::output(QStringLiteral("pdfimages"),
                                         {QStringLiteral("-list"), path(QStringLiteral("pages.pdf"))})
                         .contains(QStringLiteral(" 30 ")));
    }
}

TEST_F(OfficeConverterTest, aProgramThatHangsIsStoppedAndOneThatIsMissingIsNamed) {
    const QString source = write(QStringLiteral("sound.docx"), document("<w:r><w:t>Words</w:t></w:r>"));
    const QByteArray before = qgetenv("PATH");
    const auto with = [&](const QByteArray& script) {
        const QString folder = path(QStringLiteral("bin"));
        QDir().mkpath(folder);
        QFile::remove(folder + QStringLiteral("/soffice"));
        OfficeFiles::write(folder + QStringLiteral("/soffice"), "#!/bin/bash\n" + script);
        QFile::setPermissions(folder + QStringLiteral("/soffice"),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", QFile::encodeName(folder) + ":" + before);
    };
    std::stop_source stop;
    with("sleep 1000");
    std::jthread stopper([&stop] {
        std::this_thread::sleep_for(100ms);
        stop.request_stop();
    });
    EXPECT_EQ(convert(source, stop.get_token()), Outcome::stopped);
    with("exit 0");
    EXPECT_EQ(convert(source), Outcome::failed);
    with("for last; do :; done; while [[ $1 != --outdir ]]; do shift; done; echo junk > $2/document.pdf");
    EXPECT_EQ(convert(source), Outcome::failed);
    // An installation without Writer.
    ASSERT_TRUE(QFile::copy(path(QStringLiteral("bin/soffice")), path(QStringLiteral("bin/soffice.bin"))));
    EXPECT_EQ(convert(source), Outcome::programMissing);
    qputenv("PATH", before);
}
