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
        {QStringLiteral("report.pdf"), Kind::pdf},
        {QStringLiteral("REPORT.PDF"), Kind::pdf},
        {QStringLiteral("notes.tar.Pdf"), Kind::pdf},
        {QStringLiteral("Größe 100%.pdf"), Kind::pdf},
        {QStringLiteral("a#b?c.pdf"), Kind::pdf},
        {QStringLiteral("letter.docx"), Kind::track1},
        {QStringLiteral("photo.JPEG"), Kind::track1},
        {QStringLiteral("scan.tif"), Kind::track1},
        {QStringLiteral("readme.md"), Kind::track1},
        {QStringLiteral("memo.rtfd/"), Kind::track1},
        {QStringLiteral("budget.xlsx"), Kind::track2},
        {QStringLiteral("talk.key"), Kind::track2},
        {QStringLiteral("book.EPUB"), Kind::track2},
        {QStringLiteral("pdf"), Kind::unsupported},
        {QStringLiteral(".pdf"), Kind::unsupported},
        {QStringLiteral("report."), Kind::unsupported},
        {QStringLiteral("report.pdf.gz"), Kind::unsupported},
        {QStringLiteral("report.pdf "), Kind::unsupported},
        {QStringLiteral("drawing.svg"), Kind::unsupported},
    };
    for (const auto& [name, kind] : cases)
        EXPECT_EQ(FileOpenRouter::classify(QUrl::fromLocalFile(QStringLiteral("/no such folder/") + name)), kind)
            << name.toStdString();
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
    for (const QString& name : {QStringLiteral("a.pdf"), QStringLiteral("b.txt"), QStringLiteral("c.pptx"),
                                QStringLiteral("d.zip"), QStringLiteral("e")})
        FileOpenRouter::open(QUrl::fromLocalFile(QStringLiteral("/") + name));
    EXPECT_EQ(log.join(u','), QStringLiteral("document a.pdf,import b.txt,preview c.pptx,refusal d.zip,refusal e"));
    log.clear();
    for (const QString& name : {QStringLiteral("a.pdf"), QStringLiteral("b.txt"), QStringLiteral("e")})
        FileOpenRouter::openRecent(QUrl::fromLocalFile(QStringLiteral("/") + name));
    EXPECT_EQ(log.join(u','), QStringLiteral("document a.pdf,import b.txt,document e"));

    FileOpenRouter::setDestinations({});
    for (const QString& name :
         {QStringLiteral("a.pdf"), QStringLiteral("b.txt"), QStringLiteral("c.pptx"), QStringLiteral("d.zip")})
        FileOpenRouter::open(QUrl::fromLocalFile(QStringLiteral("/") + name));
    EXPECT_EQ(log.size(), 3);
}

TEST(FileOpenRouter, panelsAndDropsKnowTheSupportedKinds) {
    const QStringList filters = FileOpenRouter::nameFilters();
    ASSERT_EQ(filters.size(), 3);
    for (const QString& pattern :
         {QStringLiteral("*.pdf "), QStringLiteral("*.PDF "), QStringLiteral("*.docx "), QStringLiteral("*.EPUB")})
        EXPECT_TRUE(filters[0].contains(pattern)) << pattern.toStdString();

    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(QStringLiteral("application/pdf")));
    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(QStringLiteral("application/x-pdf"))); // an alias
    EXPECT_TRUE(FileOpenRouter::isSupportedMimeType(QStringLiteral("image/png")));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QStringLiteral("application/zip")));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QStringLiteral("application/octet-stream")));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QStringLiteral("no such type")));
    EXPECT_FALSE(FileOpenRouter::isSupportedMimeType(QString()));
    // File managers offer Quillo for all of them.
    QFile entry(QStringLiteral(DESKTOP_ENTRY));
    ASSERT_TRUE(entry.open(QFile::ReadOnly));
    const QStringList lines = QString::fromUtf8(entry.readAll()).split(u'\n');
    EXPECT_TRUE(lines.contains(QStringLiteral("Exec=quillo %F")));
    QStringList types = lines.filter(QStringLiteral("MimeType=")).value(0).mid(9).split(u';', Qt::SkipEmptyParts);
    QStringList supported = FileOpenRouter::allSupportedMimeTypes();
    types.sort();
    supported.sort();
    EXPECT_EQ(types, supported);
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
