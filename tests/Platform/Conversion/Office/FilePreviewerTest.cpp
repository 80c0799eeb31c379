#include "FilePreviewer.h"
#include "PDFDocument.h"
#include "PDFSource.h"
#include "SpotlightTextExtractor.h"

#include "OfficeFiles.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>

#include <utility>
#include <vector>

using FilePreviewer::Outcome;

namespace {

class FilePreviewerTest : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QString write(const QString& name, const QByteArray& bytes) const { return OfficeFiles::write(path(name), bytes); }
    Outcome preview(const QString& source) const {
        QFile::remove(pages());
        const Outcome outcome = FilePreviewer::writePages(source, pages(), {});
        EXPECT_EQ(QFile::exists(pages()), outcome == Outcome::written);
        return outcome;
    }
    QString pages() const { return path(QStringLiteral("pages.pdf")); }
    QString text() const {
        return SpotlightTextExtractor::textOfPages(*PDFDocument::openSource(pages()), {})
            .value_or(QStringLiteral("none"));
    }
    int pageCount() const {
        const QString information = OfficeFiles::output(QStringLiteral("pdfinfo"), {pages()});
        return information.section(QStringLiteral("Pages:"), 1).section(u'\n', 0, 0).trimmed().toInt();
    }

    const QTemporaryDir m_folder;
};

constexpr auto sheets = R"(<?xml version="1.0"?><Workbook xmlns="urn:schemas-microsoft-com:office:spreadsheet"
xmlns:ss="urn:schemas-microsoft-com:office:spreadsheet">
<Worksheet ss:Name="First"><Table>%1</Table></Worksheet>
<Worksheet ss:Name="Second"><Table><Row><Cell><Data ss:Type="String">Größe</Data></Cell></Row></Table></Worksheet>
</Workbook>)";

constexpr auto slides = R"(<?xml version="1.0"?><office:document
xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0" xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.3"
office:mimetype="application/vnd.oasis.opendocument.presentation"><office:body><office:presentation>
<draw:page draw:name="a"><draw:frame svg:width="10cm" svg:height="3cm"><draw:text-box><text:p>Opening words</text:p>
</draw:text-box></draw:frame></draw:page><draw:page draw:name="b"/></office:presentation></office:body></office:document>)";

} // namespace

TEST_F(FilePreviewerTest, sheetsAndSlidesBecomePages) {
    QByteArray rows;
    for (int i = 0; i < 300; ++i)
        rows += "<Row><Cell><Data ss:Type=\"Number\">" + QByteArray::number(i) + "</Data></Cell></Row>";
    const QString xml = write(QStringLiteral("sheet.xml"), QByteArray(sheets).replace("%1", rows));
    const QString odp = write(QStringLiteral("talk.fodp"), slides);
    for (const QString& file :
         {OfficeFiles::converted(xml, QStringLiteral("xlsx")), OfficeFiles::converted(xml, QStringLiteral("xls")),
          OfficeFiles::converted(odp, QStringLiteral("pptx")), OfficeFiles::converted(odp, QStringLiteral("ppt"))}) {
        SCOPED_TRACE(file.toStdString());
        EXPECT_EQ(preview(file), Outcome::written);
        EXPECT_EQ(pageCount(), 2);
        EXPECT_TRUE(
            text().contains(file.contains(u"sheet") ? QStringLiteral("Größe") : QStringLiteral("Opening words")))
            << text().toStdString();
    }
}

TEST_F(FilePreviewerTest, aBookIsLaidOutWithItsLinks) {
    const QString file =
        write(QStringLiteral("novel.epub"),
              OfficeFiles::book(R"(<html xmlns="http://www.w3.org/1999/xhtml"><body><p>Größe, <a href="b.xhtml">there
</a> and <a href="https://example.org/there">elsewhere</a></p></body></html>)"));
    EXPECT_EQ(preview(file), Outcome::written);
    EXPECT_EQ(pageCount(), 2);
    EXPECT_TRUE(text().contains(QStringLiteral("Größe, there and elsewhere"))) << text().toStdString();
    const QByteArray bytes = OfficeFiles::bytesOf(pages());
    EXPECT_TRUE(bytes.contains("(https://example.org/there)"));
    EXPECT_TRUE(bytes.contains("/XYZ"));
}

TEST_F(FilePreviewerTest, anAppleFileThatNobodyReadsShowsItsOwnPreview) {
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    QImage(300, 200, QImage::Format_RGB32).save(&buffer, "JPG");
    QByteArray pdf;
    QBuffer pages(&pdf);
    ASSERT_TRUE(pages.open(QIODevice::WriteOnly));
    QPdfWriter writer(&pages);
    QPainter painter(&writer);
    painter.drawText(100, 100, QStringLiteral("Opening"));
    writer.newPage();
    painter.end();
    const struct {
        const char* name;
        std::vector<std::pair<QByteArray, QByteArray>> members;
        int pages;
        const char* text;
    } files[] = {
        {"budget.numbers", {{"Index/Document.iwa", "junk"}, {"preview.jpg", jpeg}}, 1, "none"},
        {"talk.key", {{"index.apxl", "<junk"}, {"QuickLook/Preview.pdf", pdf}, {"preview.jpg", jpeg}}, 2, "Opening"},
        {"letter.pages", {{"Index.zip", "junk"}, {"QuickLook/Preview.pdf", pdf}}, 2, "Opening"},
        {"broken.pages",
         {{"Index/A.iwa", "junk"}, {"QuickLook/Preview.pdf", "%PDF"}, {"Preview.jpg", jpeg}},
         1,
         "none"},
        {"unknown.key", {{"Metadata/a.plist", "junk"}, {"QuickLook/Thumbnail.jpg", jpeg}}, 1, "none"},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        EXPECT_EQ(preview(write(QString::fromLatin1(file.name), OfficeFiles::package(file.members))), Outcome::written);
        EXPECT_EQ(pageCount(), file.pages);
        EXPECT_EQ(text().simplified().toStdString(), file.text);
    }
}

TEST_F(FilePreviewerTest, whatIsBrokenFails) {
    const struct {
        const char* name;
        QByteArray bytes;
    } files[] = {{"words.xlsx", "Only words.\n"},
                 {"words.ppt", "Only words.\n"},
                 {"words.key", "Only words.\n"},
                 {"words.epub", "Only words.\n"},
                 {"empty.epub", OfficeFiles::package({{"META-INF/container.xml", "<junk"}})},
                 {"empty.pages", OfficeFiles::package({{"Index/Document.iwa", "junk"}})},
                 {"locked.xlsx", "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + QByteArray(5000, '\0')}};
    for (const auto& [name, bytes] : files)
        EXPECT_EQ(preview(write(QString::fromLatin1(name), bytes)), Outcome::failed) << name;
}
