#include "InformationReader.h"

#include "EngineValues.h"
#include "SourceEngine.h"
#include "XmpPacket.h"

#include <QRegularExpression>
#include <QStringList>

namespace {

constexpr int entryLimit = 1000;
constexpr qsizetype packetLimit = qsizetype(1) << 20;

QVariant attribute(const QString& key, const QString& text) {
    if (key == QLatin1String("CreationDate") || key == QLatin1String("ModDate")) {
        const QDateTime date = EngineValues::date(text);
        return date.isValid() ? QVariant(date) : QVariant(text);
    }
    if (key == QLatin1String("Keywords")) {
        static const QRegularExpression separator(QStringLiteral("\\s*[,;]\\s*"));
        return text.trimmed().split(separator, Qt::SkipEmptyParts);
    }
    return text;
}

QByteArray metadata(const SourceEngine::Lease& lease) {
    QByteArray packet;
    fz_context* context = lease.context();
    fz_stream* stream = nullptr;
    engineTry(context, [&] {
        stream =
            pdf_open_stream(context, pdf_dict_getp(context, pdf_trailer(context, lease.document()), "Root/Metadata"));
    });
    if (!stream)
        return packet;
    packet.resize(packetLimit);
    std::size_t length = 0;
    engineTry(context, [&] {
        length = fz_read(context, stream, reinterpret_cast<unsigned char*>(packet.data()), std::size_t(packetLimit));
    });
    fz_drop_stream(context, stream);
    packet.truncate(qsizetype(length));
    return packet;
}

} // namespace

QVariantMap InformationReader::read(SourceEngine& engine) {
    QVariantMap attributes;
    const SourceEngine::Lease borrowed = engine.lease();
    if (!borrowed)
        return attributes;
    fz_context* context = borrowed.context();
    pdf_obj* information = nullptr;
    int count = 0;
    engineTry(context, [&] {
        information = pdf_dict_get(context, pdf_trailer(context, borrowed.document()), PDF_NAME(Info));
        count = std::min(pdf_dict_len(context, information), entryLimit);
    });
    for (int i = 0; i < count; ++i) {
        pdf_obj* key = nullptr;
        pdf_obj* value = nullptr;
        engineTry(context, [&] {
            key = pdf_dict_get_key(context, information, i);
            value = pdf_resolve_indirect(context, pdf_dict_get_val(context, information, i));
        });
        const QString name = EngineValues::name(context, key);
        const QString text =
            pdf_is_name(context, value) ? EngineValues::name(context, value) : EngineValues::text(context, value);
        if (!name.isEmpty() && !text.isEmpty())
            attributes.insert(name, attribute(name, text));
    }
    // What only the metadata stream says.
    const QVariantMap others = XmpPacket::attributes(metadata(borrowed));
    for (auto other = others.begin(); other != others.end(); ++other)
        if (!attributes.contains(other.key()))
            attributes.insert(other.key(), other.value());
    return attributes;
}
