#include "XmpPacket.h"

#include <QDateTime>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <iterator>

namespace {

constexpr qsizetype largestPacket = qsizetype(8) << 20;

/// Where an attribute stands in the packet, under the prefixes that every writer uses.
struct Property {
    QLatin1String attribute;
    QLatin1String name;
    QLatin1String container; ///< the kind of list around the value; empty for plain text
};

/// All of them in one text, beside the list of them or alone; often an attribute of the description.
const Property keywords{QLatin1String("Keywords"), QLatin1String("pdf:Keywords"), QLatin1String()};

const Property properties[] = {
    {QLatin1String("Title"), QLatin1String("dc:title"), QLatin1String("rdf:Alt")},
    {QLatin1String("Author"), QLatin1String("dc:creator"), QLatin1String("rdf:Seq")},
    {QLatin1String("Subject"), QLatin1String("dc:description"), QLatin1String("rdf:Alt")},
    {QLatin1String("Keywords"), QLatin1String("dc:subject"), QLatin1String("rdf:Bag")},
    keywords,
    {QLatin1String("ModDate"), QLatin1String("xmp:ModifyDate"), QLatin1String()},
    {QLatin1String("ModDate"), QLatin1String("xmp:MetadataDate"), QLatin1String()},
    {QLatin1String("Thumbnails"), QLatin1String("xmp:Thumbnails"), QLatin1String()},
    {QLatin1String("Thumbnails"), QLatin1String("xap:Thumbnails"), QLatin1String()},
};

bool isChanged(QStringView name, const QStringList& keys) {
    return std::any_of(std::begin(properties), std::end(properties), [&](const Property& property) {
        return name == property.name && keys.contains(property.attribute);
    });
}

void writeProperty(QXmlStreamWriter& writer, const Property& property, const QVariant& value) {
    const QDateTime date = value.toDateTime();
    const QStringList texts = value.typeId() == QMetaType::QStringList ? value.toStringList()
                              : value.typeId() == QMetaType::QDateTime
                                  ? QStringList{date.toOffsetFromUtc(date.offsetFromUtc()).toString(Qt::ISODate)}
                                  : QStringList{value.toString()};
    writer.writeStartElement(property.name);
    if (property.container.isEmpty()) {
        writer.writeCharacters(texts.join(QStringLiteral(", ")));
    } else {
        writer.writeStartElement(property.container);
        for (const QString& text : texts) {
            writer.writeStartElement(QStringLiteral("rdf:li"));
            if (property.container == QLatin1String("rdf:Alt"))
                writer.writeAttribute(QStringLiteral("xml:lang"), QStringLiteral("x-default"));
            writer.writeCharacters(text);
            writer.writeEndElement();
        }
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

void writeDescription(QXmlStreamWriter& writer, const QStringList& keys, const QVariantMap& attributes) {
    writer.writeStartElement(QStringLiteral("rdf:Description"));
    writer.writeAttribute(QStringLiteral("rdf:about"), QString());
    writer.writeAttribute(QStringLiteral("xmlns:dc"), QStringLiteral("http://purl.org/dc/elements/1.1/"));
    writer.writeAttribute(QStringLiteral("xmlns:pdf"), QStringLiteral("http://ns.adobe.com/pdf/1.3/"));
    writer.writeAttribute(QStringLiteral("xmlns:xmp"), QStringLiteral("http://ns.adobe.com/xap/1.0/"));
    for (const Property& property : properties)
        if (keys.contains(property.attribute) && attributes.contains(property.attribute))
            writeProperty(writer, property, attributes.value(property.attribute));
    writer.writeEndElement();
}

/// The texts of the element that the reader has entered: those of its list, the usual language first, or its own.
QStringList textsOf(QXmlStreamReader& reader) {
    QStringList texts;
    QString plain;
    for (int depth = 1; depth > 0 && !reader.atEnd();) {
        reader.readNext();
        if (reader.isStartElement() && reader.qualifiedName() == QLatin1String("rdf:li")) {
            const bool isUsual = reader.attributes().value(QLatin1String("xml:lang")) == QLatin1String("x-default");
            const QString text = reader.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
            if (!text.isEmpty())
                texts.insert(isUsual ? 0 : texts.size(), text);
        } else if (reader.isStartElement()) {
            ++depth;
        } else if (reader.isEndElement()) {
            --depth;
        } else if (reader.isCharacters() && depth == 1) {
            plain += reader.text();
        }
    }
    return texts.isEmpty() && !plain.trimmed().isEmpty() ? QStringList{plain.trimmed()} : texts;
}

void addAttribute(QVariantMap& attributes, const Property& property, const QStringList& texts) {
    if (texts.isEmpty() || attributes.contains(property.attribute))
        return;
    if (property.attribute == keywords.attribute)
        attributes.insert(property.attribute, texts);
    else
        attributes.insert(property.attribute, property.container == QLatin1String("rdf:Alt")
                                                  ? texts.first()
                                                  : texts.join(QStringLiteral(", ")));
}

/// Keywords in one text, as the information dictionary has them.
QStringList partsOf(const QString& text) {
    QStringList parts;
    for (const QString& part : QString(text).replace(u';', u',').split(u','))
        if (!part.trimmed().isEmpty())
            parts.append(part.trimmed());
    return parts;
}

} // namespace

QVariantMap XmpPacket::attributes(const QByteArray& packet) {
    QVariantMap attributes;
    QStringList keywordTexts;
    if (packet.size() > largestPacket)
        return attributes;
    QXmlStreamReader reader(packet);
    reader.setNamespaceProcessing(false); // names keep their prefixes
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::DTD)
            return {};
        if (!reader.isStartElement())
            continue;
        keywordTexts += partsOf(reader.attributes().value(keywords.name).toString());
        if (reader.qualifiedName() == keywords.name) {
            keywordTexts += partsOf(textsOf(reader).join(u','));
            continue;
        }
        const auto* const property =
            std::find_if(std::begin(properties), std::end(properties), [&reader](const Property& each) {
                return reader.qualifiedName() == each.name && !each.container.isEmpty();
            });
        if (property != std::end(properties))
            addAttribute(attributes, *property, textsOf(reader));
    }
    addAttribute(attributes, keywords, keywordTexts);
    return reader.hasError() ? QVariantMap() : attributes;
}

QStringList XmpPacket::keys() {
    QStringList keys;
    for (const Property& property : properties)
        if (!property.container.isEmpty())
            keys.append(property.attribute);
    return keys;
}

std::optional<QByteArray> XmpPacket::withAttributes(const QByteArray& packet, const QStringList& keys,
                                                    const QVariantMap& attributes) {
    if (packet.size() > largestPacket)
        return std::nullopt;
    QXmlStreamReader reader(packet);
    reader.setNamespaceProcessing(false); // names keep their prefixes
    QByteArray result;
    QXmlStreamWriter writer(&result);
    bool written = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            if (isChanged(reader.qualifiedName(), keys)) {
                reader.skipCurrentElement();
                break;
            }
            writer.writeStartElement(reader.qualifiedName().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes())
                if (!isChanged(attribute.qualifiedName(), keys))
                    writer.writeAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
            break;
        }
        case QXmlStreamReader::EndElement:
            if (reader.qualifiedName() == QLatin1String("rdf:RDF") && !written) {
                writeDescription(writer, keys, attributes);
                written = true;
            }
            writer.writeEndElement();
            break;
        case QXmlStreamReader::Characters:
            writer.writeCharacters(reader.text().toString());
            break;
        case QXmlStreamReader::Comment:
            writer.writeComment(reader.text().toString());
            break;
        case QXmlStreamReader::ProcessingInstruction:
            writer.writeProcessingInstruction(reader.processingInstructionTarget().toString(),
                                              reader.processingInstructionData().toString());
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return std::nullopt;
        default:
            break;
        }
    }
    if (reader.hasError() || !written)
        return std::nullopt;
    return result;
}
