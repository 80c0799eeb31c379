#include "FilePreviewer.h"

#include "BookPages.h"
#include "OfficeConverter.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "ZipPackage.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

#include <memory>
#include <optional>

namespace {

constexpr qsizetype largestMember = qsizetype(64) << 20U; // bytes
constexpr int mostMegabytes = 256;                        // of an unpacked picture

QString suffixOf(const QString& path) {
    return QFileInfo(path).suffix().toLower();
}

/// A file of a package, which may be a folder.
std::optional<QByteArray> member(const QString& package, const QString& name) {
    if (const auto zip = ZipPackage::open(package))
        return zip->read(name.toUtf8(), largestMember);
    QFile file(QDir(package).filePath(name));
    if (!QFileInfo(package).isDir() || QFileInfo(file).isSymLink() || file.size() > largestMember ||
        !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush())
        return true;
    file.remove();
    return false;
}

QImage picture(QByteArray bytes) {
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() * 4 > qint64(mostMegabytes) << 20U)
        return {};
    return reader.read();
}

/// What the program that wrote the file has put into it for such as cannot read it.
bool writeOwnPreview(const QString& source, const QString& destination) {
    if (const auto pages = member(source, QStringLiteral("QuickLook/Preview.pdf"))) {
        try {
            if (PDFSource::open(*pages)->pageCount() > 0)
                return writeBytes(destination, *pages);
        } catch (const std::exception&) {
            // The picture may be sound.
        }
    }
    for (const char* name : {"preview.jpg", "QuickLook/Thumbnail.jpg"}) {
        const auto bytes = member(source, QString::fromLatin1(name));
        const QImage image = bytes ? picture(*bytes) : QImage();
        if (image.isNull())
            continue;
        const auto document = std::make_shared<PDFDocument>();
        document->insert(PDFPage::fromImage(image, image.size()), 0);
        return writeBytes(destination, document->dataRepresentation());
    }
    return false;
}

} // namespace

FilePreviewer::Outcome FilePreviewer::writePages(const QString& source, const QString& destination,
                                                 const std::stop_token& stop) {
    const QString suffix = suffixOf(source);
    if (suffix == u"epub") {
        const auto package = ZipPackage::open(source);
        const bool isBook = package && package->contains("META-INF/container.xml");
        return isBook && BookPages::write(source, destination) ? Outcome::written : Outcome::failed;
    }
    const OfficeConverter::Outcome outcome = OfficeConverter::convert(source, destination, stop);
    const bool isApples = suffix == u"pages" || suffix == u"numbers" || suffix == u"key";
    switch (outcome) {
    case OfficeConverter::Outcome::converted:
        return Outcome::written;
    case OfficeConverter::Outcome::stopped:
        return Outcome::stopped;
    case OfficeConverter::Outcome::failed:
    case OfficeConverter::Outcome::programMissing:
        break;
    }
    if (isApples && writeOwnPreview(source, destination))
        return Outcome::written;
    return outcome == OfficeConverter::Outcome::programMissing ? Outcome::programMissing : Outcome::failed;
}

QString FilePreviewer::packageFor(const QString& source) {
    const QString suffix = suffixOf(source);
    if (suffix == u"pages")
        return QStringLiteral("libreoffice-writer");
    return suffix == u"ppt" || suffix == u"pptx" || suffix == u"key" ? QStringLiteral("libreoffice-impress")
                                                                     : QStringLiteral("libreoffice-calc");
}
