#include "HtmlPicture.h"

#include <QBuffer>
#include <QImageReader>
#include <QSet>
#include <QSize>
#include <QXmlStreamAttributes>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

/// Under this name the picture tells that it comes from a JPEG.
QString photographKey() {
    return QStringLiteral("photograph");
}

const QSet<QByteArray>& formatsOfPixels() {
    static const QSet<QByteArray> formats{"png", "jpeg", "gif", "bmp", "webp", "ico"};
    return formats;
}

QByteArray formatOf(const QByteArray& bytes) {
    QBuffer buffer;
    buffer.setData(bytes);
    return buffer.open(QIODevice::ReadOnly) ? QImageReader::imageFormat(&buffer) : QByteArray();
}

/// Whether what an element of a drawing refers to is within the drawing. A picture within it may not be a drawing
/// again, which would have references of its own.
bool isWithin(QStringView reference) {
    if (reference.startsWith(QLatin1Char('#')))
        return true;
    const qsizetype comma = reference.indexOf(QLatin1Char(','));
    if (comma < 0 || !reference.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
        return false;
    const QByteArray content = QByteArray::fromBase64(reference.mid(comma + 1).toLatin1());
    return formatsOfPixels().contains(formatOf(content));
}

bool refersElsewhere(const QXmlStreamAttributes& attributes) {
    for (const QXmlStreamAttribute& attribute : attributes)
        if (attribute.name().compare(QLatin1String("href"), Qt::CaseInsensitive) == 0 && !isWithin(attribute.value()))
            return true;
    return false;
}

/// How many pixels a picture of that size in the pixels of web pages gets: a drawing several for one, a photograph not
/// more than can be seen on paper.
QSize storedSize(QSize size, bool isDrawing) {
    constexpr int sharpness = 3;
    constexpr QSize most(4000, 4000);
    if (size.isEmpty())
        return size;
    const QSize wanted = isDrawing ? size * sharpness : size;
    const bool isTooLarge = wanted.width() > most.width() || wanted.height() > most.height();
    return isTooLarge ? wanted.scaled(most, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)) : wanted;
}

/// The drawing without elements that refer to anything outside, instructions and declarations; empty when it isn't well
/// formed. Qt's reader of drawings opens the files that a drawing names.
QByteArray withoutReferences(const QByteArray& drawing) {
    QXmlStreamReader reader(drawing);
    QByteArray kept;
    QXmlStreamWriter writer(&kept);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            // The target of a link may be anywhere: nobody follows it here.
            if (reader.name() != QLatin1String("a") && refersElsewhere(reader.attributes()))
                reader.skipCurrentElement();
            else
                writer.writeCurrentToken(reader);
            break;
        case QXmlStreamReader::EndElement:
        case QXmlStreamReader::Characters:
            writer.writeCurrentToken(reader);
            break;
        default:
            break;
        }
    }
    return reader.hasError() ? QByteArray() : kept;
}

} // namespace

QImage HtmlPicture::read(const QByteArray& bytes) {
    const QByteArray format = formatOf(bytes);
    const bool isDrawing = format == "svg";
    if (!isDrawing && !formatsOfPixels().contains(format))
        return {};
    QBuffer buffer;
    buffer.setData(isDrawing ? withoutReferences(bytes) : bytes);
    if (!buffer.open(QIODevice::ReadOnly))
        return {};
    QImageReader reader(&buffer, format);
    reader.setAutoTransform(true);
    constexpr qint64 mostPixels = 64LL * 1024 * 1024;
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > mostPixels)
        return {};
    const QSize stored = storedSize(size, isDrawing);
    if (stored != size)
        reader.setScaledSize(stored);
    QImage picture = reader.read();
    if (!picture.isNull() && stored != size)
        picture.setDevicePixelRatio(qreal(stored.width()) / size.width());
    if (format == "jpeg" && !picture.isNull())
        picture.setText(photographKey(), QStringLiteral("1"));
    return picture;
}

bool HtmlPicture::isPhotograph(const QImage& picture) {
    return !picture.text(photographKey()).isEmpty();
}
