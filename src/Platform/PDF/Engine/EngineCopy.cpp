#include "EngineCopy.h"

#include "Logging.h"
#include "SourceEngine.h"

#include <array>
#include <string>

namespace {

/// Readies a document for being written by the engine and read by others.
class Tidying {
public:
    Tidying(fz_context* context, pdf_document* document) : m_context(context), m_document(document) {}

    void run() {
        // A file that was shown without being repaired isn't repaired now: that could leave less of it.
        m_document->repair_attempted = 1;
        const int count = pdf_xref_len(m_context, m_document);
        // No object has the number zero, though a repair may have found one.
        engineTry(m_context, [&] { pdf_get_xref_entry(m_context, m_document, 0)->type = 'f'; });
        // Objects that can't be read keep the engine from writing the others.
        for (int number = 1; number < count; ++number)
            if (!engineTry(m_context, [&] { tidyObject(number); }))
                engineTry(m_context, [&] { pdf_delete_object(m_context, m_document, number); });
        engineTry(m_context, [&] { tidy(pdf_trailer(m_context, m_document), 0); });
        engineTry(m_context, [&] { restoreProtection(); });
    }

private:
    /// May throw the engine's way.
    void tidyObject(int number) {
        pdf_obj* object = pdf_load_object(m_context, m_document, number);
        fz_try(m_context) {
            pdf_set_obj_parent(m_context, object, 0); // or each of its values would count as edited
            tidy(object, 0);
            pdf_set_obj_parent(m_context, object, number);
        }
        fz_always(m_context) pdf_drop_obj(m_context, object);
        fz_catch(m_context) fz_rethrow(m_context);
    }

    /// A dictionary of the protection that was read again, as by a repair, was decrypted like all others, though none
    /// is encrypted. Its strings as they came (ISO 32000-2, 7.6.4.2). May throw the engine's way.
    void restoreProtection() {
        pdf_crypt* crypt = m_document->crypt;
        pdf_obj* dictionary = pdf_dict_get(m_context, pdf_trailer(m_context, m_document), PDF_NAME(Encrypt));
        if (!crypt || !pdf_is_dict(m_context, dictionary))
            return;
        const auto put = [&](pdf_obj* key, const unsigned char* bytes, std::size_t size) {
            pdf_dict_put_string(m_context, dictionary, key, reinterpret_cast<const char*>(bytes), size);
        };
        constexpr int firstLong = 5; // revision: hashes with salts, and the keys encrypted with them
        const bool isLong = pdf_crypt_revision(m_context, crypt) >= firstLong;
        put(PDF_NAME(O), pdf_crypt_owner_password(m_context, crypt), isLong ? 48 : 32);
        put(PDF_NAME(U), pdf_crypt_user_password(m_context, crypt), isLong ? 48 : 32);
        if (!isLong)
            return;
        put(PDF_NAME(OE), pdf_crypt_owner_encryption(m_context, crypt), 32);
        put(PDF_NAME(UE), pdf_crypt_user_encryption(m_context, crypt), 32);
        const Block permissions = encryptedPermissions(crypt);
        put(PDF_NAME(Perms), permissions.data(), permissions.size());
    }

    using Block = std::array<unsigned char, 16>;

    /// The engine keeps no such string of a file that it reads (ISO 32000-2, 7.6.4.4.9, algorithm 10).
    [[nodiscard]] Block encryptedPermissions(pdf_crypt* crypt) {
        const auto flags = static_cast<unsigned>(pdf_crypt_permissions(m_context, crypt));
        Block plain{0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 'F', 'a', 'd', 'b'};
        for (std::size_t i = 0; i < sizeof flags; ++i)
            plain[i] = static_cast<unsigned char>(flags >> (8 * i));
        if (pdf_crypt_encrypt_metadata(m_context, crypt))
            plain[8] = 'T';
        fz_aes key;
        constexpr int keyBits = 256;
        fz_aes_setkey_enc(&key, pdf_crypt_key(m_context, crypt), keyBits);
        Block noVector{}; // a single block, so chained to nothing
        Block encrypted{};
        fz_aes_crypt_cbc(&key, FZ_AES_ENCRYPT, plain.size(), noVector.data(), plain.data(), encrypted.data());
        return encrypted;
    }

    /// Gives references the generations of their objects, by which others look them up. May throw the engine's way.
    void tidy(pdf_obj* object, int depth) {
        constexpr int deepest = 100; // what stands deeper stays as it is
        if (depth > deepest || pdf_is_indirect(m_context, object))
            return;
        const bool isArray = pdf_is_array(m_context, object) != 0;
        const int count = isArray ? pdf_array_len(m_context, object) : pdf_dict_len(m_context, object);
        for (int i = 0; i < count; ++i) {
            pdf_obj* value = isArray ? pdf_array_get(m_context, object, i) : pdf_dict_get_val(m_context, object, i);
            if (!pdf_is_indirect(m_context, value))
                tidy(value, depth + 1);
            else if (const int generation = generationOf(pdf_to_num(m_context, value));
                     generation != pdf_to_gen(m_context, value))
                put(object, i, pdf_new_indirect(m_context, m_document, pdf_to_num(m_context, value), generation));
        }
    }

    /// Takes the value over. May throw the engine's way.
    void put(pdf_obj* object, int index, pdf_obj* value) {
        if (pdf_is_array(m_context, object))
            pdf_array_put_drop(m_context, object, index, value);
        else
            pdf_dict_put_drop(m_context, object, pdf_dict_get_key(m_context, object, index), value);
    }

    /// Of an object as the engine writes it. May throw the engine's way.
    [[nodiscard]] int generationOf(int number) {
        if (number <= 0 || number >= pdf_xref_len(m_context, m_document))
            return 0;
        const pdf_xref_entry* entry = pdf_get_xref_entry(m_context, m_document, number);
        return entry->type == 'n' ? entry->gen : 0; // in an object stream it is a place there
    }

    fz_context* m_context;
    pdf_document* m_document;
};

} // namespace

QByteArray EngineCopy::of(SourceEngine& engine) {
    SourceEngine::Lease lease = engine.lease();
    if (!lease)
        return {};
    lease.abandon(); // writing leaves traces in the document
    fz_context* context = lease.context();
    Tidying(context, lease.document()).run();
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
