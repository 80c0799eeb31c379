#pragma once

#include "PDFCompressor.h"

#include <QString>

#include <array>
#include <chrono>
#include <optional>
#include <stop_token>

/// How large the copies of a `PDFCompressor` would be, told from some of the pages.
namespace CompressionEstimate {

/// In bytes, by `PDFCompressor::Quality`.
using Sizes = std::array<qint64, PDFCompressor::qualities.size()>;

/// Within some percent for a document whose pages are alike, and exact for one of few pages. Takes as long as
/// `patience`, or until the first page is drawn; none when no page could be drawn, or when `stop` was requested.
/// Draws on this thread's time and on two others. Any thread.
[[nodiscard]] std::optional<Sizes> of(const PDFCompressor& compressor, const std::stop_token& stop,
                                      std::chrono::milliseconds patience = std::chrono::milliseconds(700));

/// "About 2.1 MB (now 12.3 MB)"; without what it is now when `present`, in bytes, isn't known.
[[nodiscard]] QString sentence(qint64 size, std::optional<qint64> present);

} // namespace CompressionEstimate
