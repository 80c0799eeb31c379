#include "FaxCoder.h"

#include "EngineContext.h"

QByteArray FaxCoder::encoded(const QByteArray& rows, QSize size) {
    const EngineInstance instance;
    const EngineContext lent(instance);
    fz_context* context = lent.get();
    if (!context)
        return {};
    fz_buffer* buffer = nullptr;
    QByteArray bytes;
    const auto* bits = reinterpret_cast<const unsigned char*>(rows.constData());
    if (engineTry(context, [&] { buffer = fz_compress_ccitt_fax_g4(context, bits, size.width(), size.height()); })) {
        unsigned char* data = nullptr;
        const std::size_t length = fz_buffer_storage(context, buffer, &data);
        bytes = QByteArray(reinterpret_cast<const char*>(data), qsizetype(length));
    }
    fz_drop_buffer(context, buffer);
    return bytes;
}
