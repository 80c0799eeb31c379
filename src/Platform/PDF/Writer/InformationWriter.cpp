#include "InformationWriter.h"

#include "DocumentContents.h"
#include "Logging.h"
#include "PdfValues.h"
#include "XmpPacket.h"

#include <qpdf/Buffer.hh>

#include <QDateTime>
#include <QStringList>

namespace {

const QString modificationDate = QStringLiteral("ModDate");
const QString thumbnails = QStringLiteral("Thumbnails"); // of pages, in the metadata alone

std::string keyName(const QString& key) {
    return "/" + key.toStdString();
}

/// Text of the present value, for strings and names; none for anything else.
std::optional<QString> present(QPDFObjectHandle value) {
    if (value.isString())
        return PdfValues::toText(value);
    if (value.isName())
        return QString::fromStdString(value.getName().substr(1));
    return std::nullopt;
}

/// True when the value in the file says the same already.
bool says(QPDFObjectHandle value, const QVariant& wanted) {
    const std::optional<QString> text = present(value);
    if (!text)
        return false;
    if (wanted.typeId() == QMetaType::QDateTime)
        return PdfValues::toDate(value) == wanted.toDateTime();
    if (wanted.typeId() == QMetaType::QStringList) {
        QStringList parts;
        for (const QString& part : QString(*text).replace(QLatin1Char(';'), QLatin1Char(',')).split(QLatin1Char(',')))
            if (!part.trimmed().isEmpty())
                parts.append(part.trimmed());
        return parts == wanted.toStringList();
    }
    return *text == wanted.toString();
}

QPDFObjectHandle object(const QVariant& value) {
    if (value.typeId() == QMetaType::QDateTime)
        return PdfValues::date(value.toDateTime());
    if (value.typeId() == QMetaType::QStringList)
        return PdfValues::text(value.toStringList().join(QStringLiteral(", ")));
    return PdfValues::text(value.toString());
}

/// Of the keys, those are brought to their values, or removed, of which the packet says something else.
void updateMetadata(QStringList keys, const QVariantMap& attributes, ObjectStore& objects) {
    QPDFObjectHandle metadata = objects.root().getKey("/Metadata");
    if (!metadata.isStream())
        return;
    QByteArray packet;
    try {
        const auto buffer = metadata.getStreamData();
        packet = QByteArray(reinterpret_cast<const char*>(buffer->getBuffer()), qsizetype(buffer->getSize()));
    } catch (const std::exception& error) {
        // A packet that nobody can read misleads nobody.
        qCWarning(Logging::pdf) << "unpacking the metadata failed:" << Logging::causes(error);
        return;
    }
    const QVariantMap said = XmpPacket::attributes(packet);
    keys.removeIf([&](const QString& key) {
        return said.value(key) == attributes.value(key) && key != modificationDate && key != thumbnails;
    });
    const std::optional<QByteArray> changed = XmpPacket::withAttributes(packet, keys, attributes);
    if (!changed) {
        if (keys.contains(thumbnails) && packet.contains("Thumbnails"))
            objects.remove(objects.root(), "/Metadata"); // rather than leave a picture of a removed page
        return;
    }
    QPDFObjectHandle dictionary = metadata.getDict().shallowCopy();
    for (const char* key : {"/Length", "/Filter", "/DecodeParms"})
        dictionary.removeKey(key);
    // Left unpacked: programs look for it in the bytes of the file.
    QPDFObjectHandle stream = objects.reserveStream();
    objects.fillStream(stream, dictionary, *changed);
    objects.set(objects.root(), "/Metadata", stream);
}

/// Returns the keys of what changed.
QStringList writeAttributes(const QVariantMap& attributes, QPDFObjectHandle information, ObjectStore& objects) {
    QStringList changed;
    for (const std::string& key : information.getKeys()) {
        const QString name = QString::fromStdString(key.substr(1));
        if (attributes.contains(name) || !present(information.getKey(key)))
            continue;
        objects.remove(information, key);
        changed.append(name);
    }
    for (auto attribute = attributes.begin(); attribute != attributes.end(); ++attribute) {
        const std::string key = keyName(attribute.key());
        if (attribute.key().isEmpty() || says(information.getKey(key), attribute.value()))
            continue;
        objects.set(information, key, object(attribute.value()));
        changed.append(attribute.key());
    }
    return changed + XmpPacket::keys(); // of which the metadata may have said something else all along
}

} // namespace

void InformationWriter::write(const DocumentContents& contents, ObjectStore& objects) {
    QPDFObjectHandle trailer = objects.pdf().getTrailer();
    QPDFObjectHandle information = trailer.getKey("/Info");
    if (!information.isDictionary() || !information.isIndirect()) {
        information =
            objects.add(information.isDictionary() ? information.shallowCopy() : QPDFObjectHandle::newDictionary());
        trailer.replaceKey("/Info", information);
    }
    QStringList changed;
    if (contents.attributesChanged)
        changed = writeAttributes(contents.attributes, information, objects);
    QVariantMap attributes = contents.attributes;
    attributes.insert(modificationDate, contents.taken);
    objects.set(information, keyName(modificationDate), PdfValues::date(contents.taken));
    changed.append(modificationDate);
    if (contents.base && !contents.hasAllSourcePages())
        changed.append(thumbnails);
    if (!contents.about)
        objects.remove(objects.root(), "/Metadata");
    updateMetadata(changed, attributes, objects);
}
