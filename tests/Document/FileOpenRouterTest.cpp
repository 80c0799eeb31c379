#include "FileOpenRouter.h"

#include <QDir>
#include <QMimeData>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using FileOpenRouter::Kind;

TEST(FileOpenRouter, classifiesByTheExtensionAlone) {
    const std::pair<Kind, std::vector<const char*>> cases[] = {
        {Kind::pdf, {"report.pdf", "REPORT.PDF", "notes.tar.Pdf", "Größe 100%.pdf", "a#b?c.pdf"}},
        {Kind::track1, {"letter.docx", "photo.JPEG", "scan.tif", "readme.md", "memo.rtfd/"}},
        {Kind::track2, {"budget.xlsx", "talk.key", "book.EPUB"}},
        {Kind::unsupported, {"pdf", ".pdf", "report.", "report.pdf.gz", "report.pdf ", "drawing.svg"}},
    };
    for (const auto& [kind, names] : cases)
        for (const char* name : names)
            EXPECT_EQ(
                FileOpenRouter::classify(QUrl::fromLocalFile(QStringLiteral("/no folder/") + QString::fromUtf8(name))),
                kind)
                << name;
    EXPECT_EQ(FileOpenRouter::classify(QUrl()), Kind::unsupported);

    for (const QString& extension : FileOpenRouter::allSupportedExtensions())
        EXPECT_NE(FileOpenRouter::classify(QUrl::fromLocalFile(QStringLiteral("/x.") + extension)), Kind::unsupported)
            << extension.toStdString();
}

TEST(FileOpenRouter, aFolderIsOnlyADocumentWhenItsKindIsAFolder) {
    const QTemporaryDir folder;
    const auto make = [&folder](const QString& name) {
        QDir(folder.path()).mkdir(name);
        return QUrl::fromLocalFile(folder.filePath(name));
    };
    EXPECT_EQ(FileOpenRouter::classify(make(QStringLiteral("plain"))), Kind::unsupported);
    EXPECT_EQ(FileOpenRouter::classify(make(QStringLiteral("scans.pdf"))), Kind::unsupported);
    EXPECT_EQ(FileOpenRouter::classify(make(QStringLiteral("memo.rtfd"))), Kind::track1);
    EXPECT_EQ(FileOpenRouter::classify(make(QStringLiteral("talk.key"))), Kind::track2);
}

TEST(FileOpenRouter, handsEachKindToItsDestination) {
    QStringList log;
    FileOpenRouter::setDestinations({
        .openDocument = [&log](const QUrl& url) { log << QStringLiteral("document ") + url.fileName(); },
        .openImport = [&log](const QUrl& url, const auto&) { log << QStringLiteral("import ") + url.fileName(); },
        .openPreview =
            [&log](const QUrl& url, bool isSupported) {
                log << (isSupported ? QStringLiteral("preview ") : QStringLiteral("refusal ")) + url.fileName();
            },
    });
    const auto open = [](const QStringList& names, void (*way)(const QUrl&)) {
        for (const QString& name : names)
            way(QUrl::fromLocalFile(u'/' + name));
    };
    const QStringList names = QStringLiteral("a.pdf b.txt c.pptx d.zip e").split(u' ');
    open(names, [](const QUrl& url) { FileOpenRouter::open(url); });
    open({names[0], names[1], names[4]}, [](const QUrl& url) { FileOpenRouter::openRecent(url); });
    EXPECT_EQ(log.join(u','), QStringLiteral("document a.pdf,import b.txt,preview c.pptx,refusal d.zip,refusal e,"
                                             "document a.pdf,import b.txt,document e"));
    FileOpenRouter::setDestinations({});
    open(names, [](const QUrl& url) { FileOpenRouter::open(url); });
    EXPECT_EQ(log.size(), 8);
}

TEST(FileOpenRouter, panelsAndDropsKnowTheSupportedKinds) {
    const QStringList filters = FileOpenRouter::nameFilters();
    ASSERT_EQ(filters.size(), 3);
    for (const QString& pattern :
         {QStringLiteral("*.pdf "), QStringLiteral("*.PDF "), QStringLiteral("*.docx "), QStringLiteral("*.EPUB")})
        EXPECT_TRUE(filters[0].contains(pattern)) << pattern.toStdString();

    const std::pair<const char*, bool> types[] = {{"application/pdf", true},
                                                  {"application/x-pdf", true}, // an alias
                                                  {"image/png", true},
                                                  {"application/zip", false},
                                                  {"application/octet-stream", false},
                                                  {"no such type", false},
                                                  {"", false}};
    for (const auto& [type, isSupported] : types)
        EXPECT_EQ(FileOpenRouter::isSupportedMimeType(QLatin1String(type)), isSupported) << type;
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

TEST(FileOpenRouter, aDropStandsForItsSupportedFiles) {
    const QUrl zip = QUrl::fromLocalFile(QStringLiteral("/tmp/a.zip"));
    const QUrl text = QUrl::fromLocalFile(QStringLiteral("/tmp/b.txt"));
    const QUrl pdf = QUrl::fromLocalFile(QStringLiteral("/tmp/c.pdf"));
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
    EXPECT_EQ(dropped({}), QList<QUrl>());
}
