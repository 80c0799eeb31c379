#include "FileOpenRouter.h"

#include <QFileInfo>
#include <QMimeData>
#include <QMimeDatabase>

#include <algorithm>
#include <utility>

/// Kinds of document that may be folders with a fixed inside.
static const QStringList& packageExtensions() {
    static const QStringList extensions{QStringLiteral("rtfd"), QStringLiteral("pages"), QStringLiteral("numbers"),
                                        QStringLiteral("key")};
    return extensions;
}

static FileOpenRouter::Destinations& currentDestinations() {
    static FileOpenRouter::Destinations destinations;
    return destinations;
}

/// What follows the last dot of the name, in lower case. A dot at the start makes a hidden file, not an extension.
static QString extensionOf(const QUrl& url) {
    const QString name = url.adjusted(QUrl::StripTrailingSlash).fileName();
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 ? name.mid(dot + 1).toLower() : QString();
}

void FileOpenRouter::setDestinations(Destinations destinations) {
    currentDestinations() = std::move(destinations);
}

const QStringList& FileOpenRouter::track1Extensions() {
    static const QStringList extensions{
        QStringLiteral("rtf"),  QStringLiteral("rtfd"), QStringLiteral("txt"),  QStringLiteral("doc"),
        QStringLiteral("docx"), QStringLiteral("html"), QStringLiteral("htm"),  QStringLiteral("md"),
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"),  QStringLiteral("heic"),
        QStringLiteral("gif"),  QStringLiteral("bmp"),  QStringLiteral("tiff"), QStringLiteral("tif")};
    return extensions;
}

const QStringList& FileOpenRouter::track2Extensions() {
    static const QStringList extensions{QStringLiteral("xls"),  QStringLiteral("xlsx"),  QStringLiteral("ppt"),
                                        QStringLiteral("pptx"), QStringLiteral("pages"), QStringLiteral("numbers"),
                                        QStringLiteral("key"),  QStringLiteral("epub")};
    return extensions;
}

QStringList FileOpenRouter::allSupportedExtensions() {
    return QStringList{QStringLiteral("pdf")} + track1Extensions() + track2Extensions();
}

FileOpenRouter::Kind FileOpenRouter::classify(const QUrl& url) {
    const QString extension = extensionOf(url);
    if (!packageExtensions().contains(extension) && url.isLocalFile() && QFileInfo(url.toLocalFile()).isDir())
        return Kind::unsupported;
    if (extension == u"pdf")
        return Kind::pdf;
    if (track1Extensions().contains(extension))
        return Kind::track1;
    return track2Extensions().contains(extension) ? Kind::track2 : Kind::unsupported;
}

void FileOpenRouter::open(const QUrl& url) {
    openInPlaceOf(nullptr, url);
}

void FileOpenRouter::openInPlaceOf(const std::shared_ptr<Document>& emptyTab, const QUrl& url) {
    // A copy: a destination may run an event loop, and the destinations may be set anew meanwhile.
    const Destinations destinations = currentDestinations();
    switch (const Kind kind = classify(url)) {
    case Kind::pdf:
        if (destinations.openDocument)
            destinations.openDocument(url);
        break;
    case Kind::track1:
        if (destinations.openImport)
            destinations.openImport(url, emptyTab);
        break;
    case Kind::track2:
    case Kind::unsupported:
        if (destinations.openPreview)
            destinations.openPreview(url, kind == Kind::track2);
        break;
    }
}

void FileOpenRouter::openRecent(const QUrl& url) {
    const Destinations destinations = currentDestinations();
    if (classify(url) == Kind::track1)
        open(url);
    else if (destinations.openDocument)
        destinations.openDocument(url);
}

/// "*.pdf *.PDF": file panels compare letter by letter where the file system does.
static QString patterns(const QStringList& extensions) {
    QStringList patterns;
    for (const QString& extension : extensions)
        patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
    return patterns.join(u' ');
}

QStringList FileOpenRouter::nameFilters() {
    return {QStringLiteral("All supported files (%1)").arg(patterns(allSupportedExtensions())),
            QStringLiteral("PDF documents (%1)").arg(patterns({QStringLiteral("pdf")})),
            QStringLiteral("All files (*)")};
}

QStringList FileOpenRouter::allSupportedMimeTypes() {
    static const QStringList types = [] {
        const QMimeDatabase database;
        QStringList found;
        for (const QString& extension : allSupportedExtensions()) {
            const QMimeType type =
                database.mimeTypeForFile(QStringLiteral("file.") + extension, QMimeDatabase::MatchExtension);
            if (!type.isDefault())
                found << type.name();
        }
        found.removeDuplicates();
        return found;
    }();
    return types;
}

bool FileOpenRouter::isSupportedMimeType(const QString& mimeType) {
    // By the database, so that an alias such as "application/x-pdf" counts too.
    const QMimeType type = QMimeDatabase().mimeTypeForName(mimeType);
    return type.isValid() && allSupportedMimeTypes().contains(type.name());
}

QList<QUrl> FileOpenRouter::droppedFiles(const QMimeData& data) {
    QList<QUrl> local = data.urls();
    local.removeIf([](const QUrl& url) { return !url.isLocalFile(); });
    QList<QUrl> supported = local;
    supported.removeIf([](const QUrl& url) { return classify(url) == Kind::unsupported; });
    return supported.isEmpty() ? local.first(std::min<qsizetype>(1, local.size())) : supported;
}

std::optional<QUrl> FileOpenRouter::droppedFile(const QMimeData& data) {
    const QList<QUrl> files = droppedFiles(data);
    return files.isEmpty() ? std::nullopt : std::optional(files.constFirst());
}
