#include "CompressedCopy.h"

#include "AtomicFile.h"
#include "FileError.h"

#include <QFile>
#include <QTemporaryFile>

#include <utility>

namespace {

/// Somebody wants no file any more.
struct Stopped {};

} // namespace

CompressedCopy::CompressedCopy(std::unique_ptr<QTemporaryFile> file) : m_file(std::move(file)) {}

CompressedCopy::~CompressedCopy() = default;

std::shared_ptr<const CompressedCopy> CompressedCopy::of(const PDFCompressor& compressor,
                                                         PDFCompressor::Quality quality, const std::stop_token& stop,
                                                         const std::function<void(int done)>& progress) {
    auto file = std::make_unique<QTemporaryFile>();
    if (!file->open())
        throw FileError(file->errorString());
    if (compressor.compress(quality, *file, stop, progress) == 0)
        return nullptr;
    return std::shared_ptr<const CompressedCopy>(new CompressedCopy(std::move(file)));
}

bool CompressedCopy::write(const QString& path, const std::stop_token& stop) const {
    constexpr qint64 pieceSize = qint64(1) << 20;
    try {
        writeFileAtomically(path, [&](QFile& target) {
            if (!m_file->seek(0))
                throw FileError(m_file->errorString());
            while (!m_file->atEnd()) {
                const QByteArray piece = m_file->read(pieceSize);
                if (piece.isEmpty())
                    throw FileError(m_file->errorString());
                if (stop.stop_requested())
                    throw Stopped();
                target.write(piece);
            }
        });
    } catch (const Stopped&) {
        return false;
    }
    return true;
}
