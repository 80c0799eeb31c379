#include "FileOpenRouter.h"

#include <QFileInfo>
#include <QMimeData>
#include <QMimeDatabase>

#include <utility>

/// Kinds of document that may be folders with a fixed inside.
static const QStringList& packageExtensions() {
    static const QStringList extensions{u"rtfd"_qs, u"pages"_qs, u"numbers"_qs, u"key"_qs};
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
    static const QStringList extensions{u"rtf"_qs, u"rtfd"_qs, u"txt"_qs,  u"doc"_qs,  u"docx"_qs, u"html"_qs,
                                        u"htm"_qs, u"md"_qs,   u"jpg"_qs,  u"jpeg"_qs, u"png"_qs,  u"heic"_qs,
                                        u"gif"_qs, u"bmp"_qs,  u"tiff"_qs, u"tif"_qs};
    return extensions;
}

const QStringList& FileOpenRouter::track2Extensions() {
    static const QStringList extensions{u"xls"_qs,   u"xlsx"_qs,    u"ppt"_qs, u"pptx"_qs,
                                        u"pages"_qs, u"numbers"_qs, u"key"_qs, u"epub"_qs};
    return extensions;
}

QStringList FileOpenRouter::allSupportedExtensions() {
    return QStringList{u"pdf"_qs} + track1Extensions() + track2Extensions();
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
    // A copy: a destination may run an event loop, and the destinations may be set anew meanwhile.
    const Destinations destinations = currentDestinations();
    switch (const Kind kind = classify(url)) {
    case Kind::pdf:
        if (destinations.openDocument)
            destinations.openDocument(url);
        break;
    case Kind::track1:
        if (destinations.openImport)
            destinations.openImport(url);
        break;
    case Kind::track2:
    case Kind::unsupported:
        if (destinations.openPreview)
            destinations.openPreview(url, kind == Kind::track2);
        break;
    }
}

/// "*.pdf *.PDF": file panels compare letter by letter where the file system does.
static QString patterns(const QStringList& extensions) {
    QStringList patterns;
    for (const QString& extension : extensions)
        patterns << u"*."_qs + extension << u"*."_qs + extension.toUpper();
    return patterns.join(u' ');
}

QStringList FileOpenRouter::nameFilters() {
    return {u"All supported files (%1)"_qs.arg(patterns(allSupportedExtensions())),
            u"PDF documents (%1)"_qs.arg(patterns({u"pdf"_qs})), u"All files (*)"_qs};
}

QStringList FileOpenRouter::allSupportedMimeTypes() {
    static const QStringList types = [] {
        const QMimeDatabase database;
        QStringList found;
        for (const QString& extension : allSupportedExtensions()) {
            const QMimeType type = database.mimeTypeForFile(u"file."_qs + extension, QMimeDatabase::MatchExtension);
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

std::optional<QUrl> FileOpenRouter::droppedFile(const QMimeData& data) {
    std::optional<QUrl> firstFile;
    for (const QUrl& url : data.urls()) {
        if (!url.isLocalFile())
            continue;
        if (classify(url) != Kind::unsupported)
            return url;
        if (!firstFile)
            firstFile = url;
    }
    return firstFile;
}
