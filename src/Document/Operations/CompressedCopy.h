#pragma once

#include "PDFCompressor.h"

#include <QString>

#include <functional>
#include <memory>
#include <stop_token>

class QTemporaryFile;

/// A compressed copy that has been made and is yet to be put where the user wants it. It waits in a temporary file that
/// goes with it. One thread at a time.
class CompressedCopy {
public:
    ~CompressedCopy();
    CompressedCopy(const CompressedCopy&) = delete;
    CompressedCopy& operator=(const CompressedCopy&) = delete;

    /// Null when no page could be drawn, or when `stop` was requested. As `PDFCompressor::compress`.
    [[nodiscard]] static std::shared_ptr<const CompressedCopy> of(const PDFCompressor& compressor,
                                                                  PDFCompressor::Quality quality,
                                                                  const std::stop_token& stop,
                                                                  const std::function<void(int done)>& progress);

    /// Stores it as a file of that name, at once or not at all. False, with nothing changed, when `stop` was requested
    /// in time. Throws `FileError`.
    [[nodiscard]] bool write(const QString& path, const std::stop_token& stop) const;

private:
    explicit CompressedCopy(std::unique_ptr<QTemporaryFile> file);

    std::unique_ptr<QTemporaryFile> m_file;
};
