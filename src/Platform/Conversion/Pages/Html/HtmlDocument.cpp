#include "HtmlDocument.h"

#include "HtmlPicture.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>

namespace {

constexpr qint64 largestFile = 256LL * 1024 * 1024;

/// The content of a `data:` address.
QByteArray embedded(const QUrl& address) {
    const QByteArray path = address.path(QUrl::FullyEncoded).toLatin1();
    const qsizetype comma = path.indexOf(',');
    if (comma < 0)
        return {};
    const QByteArray content = QByteArray::fromPercentEncoding(path.mid(comma + 1));
    return path.left(comma).trimmed().toLower().endsWith(";base64") ? QByteArray::fromBase64(content) : content;
}

} // namespace

HtmlDocument::HtmlDocument(const QString& folder) : m_folder(QFileInfo(folder).canonicalFilePath()) {
    if (!m_folder.endsWith(QLatin1Char('/')))
        m_folder += QLatin1Char('/');
}

QVariant HtmlDocument::loadResource(int type, const QUrl& name) {
    const QByteArray bytes = bytesAt(name);
    if (bytes.isEmpty())
        return {};
    if (type != QTextDocument::ImageResource)
        return bytes;
    const QImage picture = HtmlPicture::read(bytes);
    if (picture.isNull())
        return {};
    addResource(type, name, picture); // it is asked for at each layout and each drawing
    return picture;
}

QByteArray HtmlDocument::bytesAt(const QUrl& address) const {
    if (address.scheme() == QLatin1String("data"))
        return embedded(address);
    const bool isFile = address.scheme().isEmpty() || address.scheme() == QLatin1String("file");
    if (!isFile || !address.host().isEmpty() || address.path().isEmpty())
        return {};
    const QFileInfo place(QDir(m_folder).absoluteFilePath(address.path(QUrl::FullyDecoded)));
    const QFileInfo target(place.canonicalFilePath()); // where links and ".." lead to
    if (!target.filePath().startsWith(m_folder) || !target.isFile() || target.size() > largestFile)
        return {};
    QFile file(target.filePath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
