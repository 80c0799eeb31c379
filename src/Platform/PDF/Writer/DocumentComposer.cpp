#include "DocumentComposer.h"

#include "AppendComposer.h"
#include "AtomicFile.h"
#include "DocumentContents.h"
#include "FileError.h"
#include "Logging.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFSource.h"
#include "RewriteComposer.h"

#include <QBuffer>
#include <QFile>

#include <exception>

namespace {

/// Runs `compose` and turns whatever it throws into a sentence for the user.
template <typename Compose>
auto withErrors(Compose compose) {
    using Kind = PDFError::Kind;
    try {
        return compose();
    } catch (const PDFError&) {
        throw;
    } catch (const FileError& error) {
        std::throw_with_nested(PDFError(Kind::writeFailed, error.sentence())); // callers may look for a remedy
    } catch (const std::bad_alloc&) {
        std::throw_with_nested(PDFError(Kind::writeFailed, QStringLiteral("There isn't enough memory to save it.")));
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "composing a file failed:" << Logging::causes(error);
        std::throw_with_nested(PDFError(Kind::writeFailed, QStringLiteral("The file couldn't be put together.")));
    }
}

/// What to put behind the source's bytes to save the document; empty for none of its changes, none when it is to be
/// written anew. Updates that make up half of a file are a reason for that, unless it is signed.
std::optional<QByteArray> savedUpdate(const DocumentContents& contents, const PDFWriteOptions& options) {
    if (!options.userPassword.isEmpty() || !options.ownerPassword.isEmpty())
        return std::nullopt;
    // A file that had to be repaired isn't given back as it came: saving it is how it is mended.
    if (contents.isUnchanged() && !contents.source->wasRepaired())
        return QByteArray();
    std::optional<AppendComposer::Update> update = AppendComposer::compose(contents);
    if (!update)
        return std::nullopt;
    const qint64 updates = update->earlierUpdates + update->bytes.size();
    const qint64 size = contents.source->bytes().size() + update->bytes.size();
    if (options.keepsSignatures && update->breaksSignatures)
        throw PDFError(PDFError::Kind::breaksSignatures, QStringLiteral("That would break a digital signature."));
    return update->isSigned || updates * 2 < size ? std::optional(std::move(update->bytes)) : std::nullopt;
}

/// Writes the document anew. `restart` takes back what was written before.
template <typename Restart>
void rewrite(const DocumentContents& contents, const PDFWriteOptions& options, QIODevice& device, Restart restart) {
    if (RewriteComposer::compose(contents, options, device, SourceFile::Base::repaired))
        return;
    restart();
    (void)RewriteComposer::compose(contents, options, device, SourceFile::Base::copy);
}

} // namespace

QByteArray DocumentComposer::compose(const DocumentContents& contents, const PDFWriteOptions& options) {
    return withErrors([&] {
        const std::optional<QByteArray> update = savedUpdate(contents, options);
        if (update)
            return update->isEmpty() ? contents.source->sharedBytes() : contents.source->sharedBytes() + *update;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        rewrite(contents, options, buffer, [&buffer] {
            buffer.seek(0);
            buffer.buffer().clear();
        });
        return buffer.data();
    });
}

FileStamp DocumentComposer::write(const DocumentContents& contents, const PDFWriteOptions& options, const QString& path,
                                  const std::optional<FileStamp>& expected) {
    return withErrors([&] {
        const std::optional<QByteArray> update = savedUpdate(contents, options);
        const auto writeContents = [&](QFile& file) {
            if (update) {
                file.write(contents.source->sharedBytes());
                file.write(*update);
            } else {
                rewrite(contents, options, file, [&file] {
                    file.seek(0);
                    file.resize(0);
                });
            }
        };
        return writeFileAtomically(path, writeContents, expected);
    });
}

std::optional<QByteArray> DocumentComposer::update(const DocumentContents& contents) {
    return withErrors([&]() -> std::optional<QByteArray> {
        if (!contents.source)
            return std::nullopt;
        if (contents.isUnchanged())
            return QByteArray();
        std::optional<AppendComposer::Update> update = AppendComposer::compose(contents);
        return update ? std::optional(std::move(update->bytes)) : std::nullopt;
    });
}
