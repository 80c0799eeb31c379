#include "EngineCopy.h"

#include "Logging.h"
#include "LooseReferences.h"
#include "SourceEngine.h"

#include <array>
#include <string>

namespace {

using Block = std::array<unsigned char, 16>;

/// The engine keeps no such string of a file that it reads (ISO 32000-2, 7.6.4.4.9, algorithm 10).
Block encryptedPermissions(fz_context* context, pdf_crypt* crypt) {
    const auto flags = static_cast<unsigned>(pdf_crypt_permissions(context, crypt));
    Block plain{0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 'F', 'a', 'd', 'b'};
    for (std::size_t i = 0; i < sizeof flags; ++i)
        plain[i] = static_cast<unsigned char>(flags >> (8 * i));
    if (pdf_crypt_encrypt_metadata(context, crypt))
        plain[8] = 'T';
    fz_aes key;
    constexpr int keyBits = 256;
    fz_aes_setkey_enc(&key, pdf_crypt_key(context, crypt), keyBits);
    Block noVector{}; // a single block, so chained to nothing
    Block encrypted{};
    fz_aes_crypt_cbc(&key, FZ_AES_ENCRYPT, plain.size(), noVector.data(), plain.data(), encrypted.data());
    return encrypted;
}

/// A dictionary of the protection that was read again, as by a repair, was decrypted like all others, though none is
/// encrypted. Its strings as they came (ISO 32000-2, 7.6.4.2). May throw the engine's way.
void restoreProtection(fz_context* context, pdf_document* document) {
    pdf_crypt* crypt = document->crypt;
    pdf_obj* dictionary = pdf_dict_get(context, pdf_trailer(context, document), PDF_NAME(Encrypt));
    if (!crypt || !pdf_is_dict(context, dictionary))
        return;
    const auto put = [&](pdf_obj* key, const unsigned char* bytes, std::size_t size) {
        pdf_dict_put_string(context, dictionary, key, reinterpret_cast<const char*>(bytes), size);
    };
    constexpr int firstLong = 5; // revision: hashes with salts, and the keys encrypted with them
    const bool isLong = pdf_crypt_revision(context, crypt) >= firstLong;
    const std::size_t hashSize = isLong ? 48 : 32;
    put(PDF_NAME(O), pdf_crypt_owner_password(context, crypt), hashSize);
    put(PDF_NAME(U), pdf_crypt_user_password(context, crypt), hashSize);
    if (!isLong)
        return;
    constexpr std::size_t keySize = 32;
    put(PDF_NAME(OE), pdf_crypt_owner_encryption(context, crypt), keySize);
    put(PDF_NAME(UE), pdf_crypt_user_encryption(context, crypt), keySize);
    const Block permissions = encryptedPermissions(context, crypt);
    put(PDF_NAME(Perms), permissions.data(), permissions.size());
}

/// Readies a document for being written by the engine and read by others.
void tidy(fz_context* context, pdf_document* document) {
    // A file that was shown without being repaired isn't repaired now: that could leave less of it.
    document->repair_attempted = 1;
    const int count = pdf_xref_len(context, document);
    // No object has the number zero, though a repair may have found one.
    engineTry(context, [&] { pdf_get_xref_entry(context, document, 0)->type = 'f'; });
    engineTry(context, [&] { LooseReferences::mend(context, document, 0); });
    // Objects that can't be read keep the engine from writing the others.
    for (int number = 1; number < count; ++number)
        if (!engineTry(context, [&] { LooseReferences::mend(context, document, number); }))
            engineTry(context, [&] { pdf_delete_object(context, document, number); });
    engineTry(context, [&] { restoreProtection(context, document); });
}

} // namespace

QByteArray EngineCopy::of(SourceEngine& engine) {
    SourceEngine::Lease lease = engine.lease();
    if (!lease)
        return {};
    lease.abandon(); // writing leaves traces in the document
    fz_context* context = lease.context();
    tidy(context, lease.document());
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
