#pragma once

#include <QByteArray>

#include <optional>

/// What a PNG file (ISO/IEC 15948) holds, as far as a PDF can hold it just so.
struct PngFile {
    int width = 0; ///< pixels
    int height = 0;
    int bitDepth = 0;
    int components = 0; ///< 1 grey or a place in the palette, 3 RGB
    QByteArray palette; ///< three bytes an entry; empty for none
    QByteArray data;    ///< compressed rows, each with the number of its predictor

    /// None for bytes that are no PNG, that are damaged, or that a PDF can't hold as they are: interlaced,
    /// translucent, of colours that aren't those of sRGB.
    [[nodiscard]] static std::optional<PngFile> read(const QByteArray& bytes);
};
