#include "FileOpenRouter.h"

#include "FolderTest.h"

#include <QMimeData>

using FileOpenRouter::Kind;

class FileOpenRouterTest : public FolderTest {};

TEST_F(FileOpenRouterTest, classifiesByTheExtensionAndAFolderOnlyWhereDocumentsAreFolders) {
    for (const char* name : {"plain", "scans.pdf", "memo.rtfd", "talk.key"})
        makeFolder(name);
    const std::pair<Kind, std::vector<const char*>> cases[] = {
        {Kind::pdf, {"report.pdf", "REPORT.PDF", "notes.tar.Pdf", "Größe 100%.pdf", "a#b?c.pdf"}},
        {Kind::track1, {"letter.docx", "photo.JPEG", "scan.tif", "readme.md", "none.rtfd/", "memo.rtfd"}},
        {Kind::track2, {"budget.xlsx", "none.key", "talk.key", "book.EPUB"}},
        {Kind::unsupported,
         {"pdf", ".pdf", "report.", "report.pdf.gz", "report.pdf ", "drawing.svg", "plain", "scans.pdf"}},
    };
    for (const auto& [kind, names] : cases)
        for (const char* name : names)
            EXPECT_EQ(FileOpenRouter::classify(url(name)), kind) << name;
    EXPECT_EQ(FileOpenRouter::classify(QUrl()), Kind::unsupported);
    for (const QString& extension : FileOpenRouter::allSupportedExtensions())
        EXPECT_NE(FileOpenRouter::classify(url(qPrintable(QStringLiteral("x.") + extension))), Kind::unsupported)
            << extension.toStdString();
}

TEST_F(FileOpenRouterTest, handsEachKindToItsDestination) {
    QStringList log;
    const auto note = [&log](const char* what, const QUrl& file) {
        log << QLatin1String(what) + u' ' + file.fileName();
    };
    FileOpenRouter::setDestinations({
        .openDocument = [&note](const QUrl& file) { note("document", file); },
        .openImport = [&note](const QUrl& file, const auto&) { note("import", file); },
        .openPreview = [&note](const QUrl& file, bool isSupported) { note(isSupported ? "preview" : "refusal", file); },
    });
    const char* names[] = {"a.pdf", "b.txt", "c.pptx", "d.zip", "e"};
    for (const char* name : names)
        FileOpenRouter::open(url(name));
    for (const char* name : {"a.pdf", "b.txt", "e"})
        FileOpenRouter::openRecent(url(name));
    EXPECT_EQ(log.join(u','), QStringLiteral("document a.pdf,import b.txt,preview c.pptx,refusal d.zip,refusal e,"
                                             "document a.pdf,import b.txt,document e"));
    FileOpenRouter::setDestinations({});
    for (const char* name : names)
        FileOpenRouter::open(url(name));
    EXPECT_EQ(log.size(), 8);
}

TEST_F(FileOpenRouterTest, panelsAndDropsKnowTheSupportedKinds) {
    const QStringList filters = FileOpenRouter::nameFilters();
    for (const char* pattern : {"*.pdf ", "*.PDF ", "*.docx ", "*.EPUB"})
        EXPECT_TRUE(filters.value(0).contains(QLatin1String(pattern))) << pattern;

    for (const char* type : {"application/pdf", "application/x-pdf", "image/png"})
        EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(QLatin1String(type))) << type;
    for (const char* type : {"application/zip", "application/octet-stream", "no such type", ""})
        EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QLatin1String(type))) << type;
    // File managers offer Quillo for all of them.
    QFile entry(QStringLiteral(DESKTOP_ENTRY));
    ASSERT_TRUE(entry.open(QFile::ReadOnly));
    const QStringList lines = QString::fromUtf8(entry.readAll()).split(u'\n');
    EXPECT_TRUE(lines.contains(QStringLiteral("Exec=quillo %F")));
    QStringList offered = lines.filter(QStringLiteral("MimeType=")).value(0).mid(9).split(u';', Qt::SkipEmptyParts);
    QStringList supported = FileOpenRouter::allSupportedMimeTypes();
    offered.sort();
    supported.sort();
    EXPECT_EQ(offered, supported);
}

TEST_F(FileOpenRouterTest, aDropStandsForItsSupportedFiles) {
    const QUrl zip = url("a.zip"), text = url("b.txt"), pdf = url("c.pdf");
    const QUrl web(QStringLiteral("https://example.org/d.pdf"));
    const auto dropped = [](const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QList<QUrl> files = FileOpenRouter::droppedFiles(data);
        EXPECT_EQ(FileOpenRouter::droppedFile(data).value_or(QUrl()), files.value(0));
        return files;
    };
    EXPECT_EQ(dropped({web, zip, text, pdf}), (QList<QUrl>{text, pdf}));
    EXPECT_EQ(dropped({web, zip, zip}), QList<QUrl>{zip});
    EXPECT_EQ(dropped({web}), QList<QUrl>());
}
