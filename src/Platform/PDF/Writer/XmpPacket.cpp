#include "XmpPacket.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

constexpr qsizetype largestPacket = qsizetype(8) << 20;

/// Where an attribute stands in the packet, under the prefixes that every writer uses.
struct Property {
    QLatin1String attribute;
    QLatin1String name;
    QLatin1String container; ///< the kind of list around the value; empty for plain text
};

const Property properties[] = {
    {QLatin1String("Title"), QLatin1String("dc:title"), QLatin1String("rdf:Alt")},
    {QLatin1String("Author"), QLatin1String("dc:creator"), QLatin1String("rdf:Seq")},
    {QLatin1String("Subject"), QLatin1String("dc:description"), QLatin1String("rdf:Alt")},
    {QLatin1String("Keywords"), QLatin1String("dc:subject"), QLatin1String("rdf:Bag")},
    {QLatin1String("Keywords"), QLatin1String("pdf:Keywords"), QLatin1String()},
};

bool isChanged(QStringView name, const QStringList& keys) {
    return std::any_of(std::begin(properties), std::end(properties), [&](const Property& property) {
        return name == property.name && keys.contains(property.attribute);
    });
}

void writeProperty(QXmlStreamWriter& writer, const Property& property, const QVariant& value) {
    const QStringList texts =
        value.typeId() == QMetaType::QStringList ? value.toStringList() : QStringList{value.toString()};
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
    for (const Property& property : properties)
        if (keys.contains(property.attribute) && attributes.contains(property.attribute))
            writeProperty(writer, property, attributes.value(property.attribute));
    writer.writeEndElement();
}

} // namespace

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
