#include "EngineCopy.h"

#include "Logging.h"
#include "SourceEngine.h"

#include <string>

/// Objects that can't be read keep the engine from writing the others.
static void dropUnreadable(fz_context* context, pdf_document* document) {
    // A file that was shown without being repaired isn't repaired now: that could leave less of it.
    document->repair_attempted = 1;
    const int count = pdf_xref_len(context, document);
    for (int number = 1; number < count; ++number)
        if (!engineTry(context, [&] { pdf_drop_obj(context, pdf_load_object(context, document, number)); }))
            engineTry(context, [&] { pdf_delete_object(context, document, number); });
}

QByteArray EngineCopy::of(SourceEngine& engine) {
    SourceEngine::Lease lease = engine.lease();
    if (!lease)
        return {};
    lease.abandon(); // writing leaves traces in the document
    fz_context* context = lease.context();
    dropUnreadable(context, lease.document());
    fz_buffer* buffer = nullptr;
    fz_output* output = nullptr;
    std::string error;
    const bool written = engineTry(
        context,
        [&] {
            buffer = fz_new_buffer(context, 0);
            output = fz_new_output_with_buffer(context, buffer);
            pdf_write_options options = pdf_default_write_options;
            // A protection that can't be read isn't one.
            options.do_encrypt = engine.isEncrypted() ? PDF_ENCRYPT_KEEP : PDF_ENCRYPT_NONE;
            pdf_write_document(context, lease.document(), output, &options);
            fz_close_output(context, output);
        },
        &error);
    QByteArray copy;
    if (written) {
        unsigned char* data = nullptr;
        const std::size_t size = fz_buffer_storage(context, buffer, &data);
        copy = QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
    } else {
        qCWarning(Logging::pdf) << "the engine couldn't write its copy of a file:" << error.c_str();
    }
    fz_drop_output(context, output);
    fz_drop_buffer(context, buffer);
    return copy;
}
