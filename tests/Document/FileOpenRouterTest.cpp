#include "FileOpenRouter.h"

#include <QDir>
#include <QMimeData>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using FileOpenRouter::Kind;

TEST(FileOpenRouter, classifiesByTheExtensionAlone) {
    const struct {
        QString name;
        Kind kind;
    } cases[] = {
        {u"report.pdf"_qs, Kind::pdf},
        {u"REPORT.PDF"_qs, Kind::pdf},
        {u"notes.tar.Pdf"_qs, Kind::pdf},
        {u"Größe 100%.pdf"_qs, Kind::pdf},
        {u"a#b?c.pdf"_qs, Kind::pdf},
        {u"letter.docx"_qs, Kind::track1},
        {u"photo.JPEG"_qs, Kind::track1},
        {u"scan.tif"_qs, Kind::track1},
        {u"readme.md"_qs, Kind::track1},
        {u"memo.rtfd/"_qs, Kind::track1},
        {u"budget.xlsx"_qs, Kind::track2},
        {u"talk.key"_qs, Kind::track2},
        {u"book.EPUB"_qs, Kind::track2},
        {u"pdf"_qs, Kind::unsupported},
        {u".pdf"_qs, Kind::unsupported},
        {u"report."_qs, Kind::unsupported},
        {u"report.pdf.gz"_qs, Kind::unsupported},
        {u"report.pdf "_qs, Kind::unsupported},
        {u"drawing.svg"_qs, Kind::unsupported},
    };
    for (const auto& [name, kind] : cases)
        EXPECT_EQ(FileOpenRouter::classify(QUrl::fromLocalFile(u"/no such folder/"_qs + name)), kind)
            << name.toStdString();
    EXPECT_EQ(FileOpenRouter::classify(QUrl()), Kind::unsupported);

    for (const QString& extension : FileOpenRouter::allSupportedExtensions())
        EXPECT_NE(FileOpenRouter::classify(QUrl::fromLocalFile(u"/x."_qs + extension)), Kind::unsupported)
            << extension.toStdString();
}

TEST(FileOpenRouter, aFolderIsOnlyADocumentWhenItsKindIsAFolder) {
    const QTemporaryDir folder;
    const auto make = [&folder](const QString& name) {
        QDir(folder.path()).mkdir(name);
        return QUrl::fromLocalFile(folder.filePath(name));
    };
    EXPECT_EQ(FileOpenRouter::classify(make(u"plain"_qs)), Kind::unsupported);
    EXPECT_EQ(FileOpenRouter::classify(make(u"scans.pdf"_qs)), Kind::unsupported);
    EXPECT_EQ(FileOpenRouter::classify(make(u"memo.rtfd"_qs)), Kind::track1);
    EXPECT_EQ(FileOpenRouter::classify(make(u"talk.key"_qs)), Kind::track2);
}

TEST(FileOpenRouter, handsEachKindToItsDestination) {
    QStringList log;
    FileOpenRouter::setDestinations({
        .openDocument = [&log](const QUrl& url) { log << u"document "_qs + url.fileName(); },
        .openImport = [&log](const QUrl& url) { log << u"import "_qs + url.fileName(); },
        .openPreview =
            [&log](const QUrl& url, bool isSupported) {
                log << (isSupported ? u"preview "_qs : u"refusal "_qs) + url.fileName();
            },
    });
    for (const QString& name : {u"a.pdf"_qs, u"b.txt"_qs, u"c.pptx"_qs, u"d.zip"_qs, u"e"_qs})
        FileOpenRouter::open(QUrl::fromLocalFile(u"/"_qs + name));
    EXPECT_EQ(log.join(u','), u"document a.pdf,import b.txt,preview c.pptx,refusal d.zip,refusal e"_qs);

    FileOpenRouter::setDestinations({});
    for (const QString& name : {u"a.pdf"_qs, u"b.txt"_qs, u"c.pptx"_qs, u"d.zip"_qs})
        FileOpenRouter::open(QUrl::fromLocalFile(u"/"_qs + name));
    EXPECT_EQ(log.size(), 5);
}

TEST(FileOpenRouter, panelsAndDropsKnowTheSupportedKinds) {
    const QStringList filters = FileOpenRouter::nameFilters();
    ASSERT_EQ(filters.size(), 3);
    for (const QString& pattern : {u"*.pdf "_qs, u"*.PDF "_qs, u"*.docx "_qs, u"*.EPUB"_qs})
        EXPECT_TRUE(filters[0].contains(pattern)) << pattern.toStdString();

    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(u"application/pdf"_qs));
    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(u"application/x-pdf"_qs)); // an alias
    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(u"image/png"_qs));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(u"application/zip"_qs));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(u"application/octet-stream"_qs));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(u"no such type"_qs));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QString()));
}

TEST(FileOpenRouter, aDropStandsForItsFirstSupportedFile) {
    const QUrl zip = QUrl::fromLocalFile(u"/tmp/a.zip"_qs);
    const QUrl text = QUrl::fromLocalFile(u"/tmp/b.txt"_qs);
    const QUrl pdf = QUrl::fromLocalFile(u"/tmp/c.pdf"_qs);
    const QUrl web(u"https://example.org/d.pdf"_qs);
    const auto dropped = [](const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        return FileOpenRouter::droppedFile(data);
    };
    EXPECT_EQ(dropped({web, zip, text, pdf}), text);
    EXPECT_EQ(dropped({web, zip}), zip);
    EXPECT_EQ(dropped({web}), std::nullopt);
    EXPECT_EQ(dropped({}), std::nullopt);
}
