#include "FilePreviewer.h"

#include "ConverterProcess.h"
#include "Logging.h"
#include "OfficeConverter.h"
#include "PDFSource.h"
#include "ZipPackage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <exception>
#include <optional>

namespace {

constexpr qsizetype largestMember = qsizetype(64) << 20U; // bytes

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

/// What the program that wrote the file has put into it for such as cannot read it.
bool writeOwnPreview(const QString& source, const QString& destination, const std::stop_token& stop) {
    if (const auto pages = member(source, QStringLiteral("QuickLook/Preview.pdf"))) {
        try {
            if (PDFSource::open(*pages)->pageCount() > 0)
                return writeBytes(destination, *pages);
        } catch (const std::exception& error) { // the picture may be sound
            qCWarning(Logging::pdf) << "a file's own preview can't be read:" << Logging::causes(error);
        }
    }
    for (const char* name : {"preview.jpg", "Preview.jpg", "QuickLook/Preview.jpg", "QuickLook/Thumbnail.jpg"}) {
        const auto bytes = member(source, QString::fromLatin1(name));
        const QTemporaryDir folder;
        const QString picture = folder.filePath(QStringLiteral("preview.jpg"));
        if (bytes && folder.isValid() && writeBytes(picture, *bytes) &&
            ConverterProcess::convert(ConverterProcess::Kind::picture, picture, destination, stop))
            return true;
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
        return isBook && ConverterProcess::convert(ConverterProcess::Kind::book, source, destination, stop)
                   ? Outcome::written
               : stop.stop_requested() ? Outcome::stopped
                                       : Outcome::failed;
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
    if (isApples && writeOwnPreview(source, destination, stop))
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
