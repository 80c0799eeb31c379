#pragma once

#include <QByteArray>
#include <QSizeF>
#include <QTransform>

#include <optional>

/// What the markers at the start of a JPEG file say (ISO/IEC 10918-1, annex B).
struct JpegHeader {
    int width = 0; ///< pixels as stored
    int height = 0;
    int components = 0;      ///< 1 grey, 3 colour, 4 CMYK
    bool isInverted = false; ///< CMYK with 0 for full ink, as Adobe's programs write it
    int orientation = 1;     ///< of Exif, 1 to 8; 1 is upright
    QSizeF exifDensity;      ///< pixels as stored for an inch, as Exif tells; empty where it doesn't
    QByteArray iccProfile;   ///< what its colours mean; empty where it doesn't say so, or in a way that doesn't fit

    /// None for bytes that are no JPEG, or of a kind that a PDF can't hold: arithmetic or lossless coding, 12 bits.
    [[nodiscard]] static std::optional<JpegHeader> read(const QByteArray& bytes);

    /// True when width and height change places for the picture to be upright.
    [[nodiscard]] bool isTurned() const { return orientation >= 5; }

    /// Turns and mirrors the unit square (y up) so that the picture is upright.
    [[nodiscard]] QTransform uprightTransform() const;
};
