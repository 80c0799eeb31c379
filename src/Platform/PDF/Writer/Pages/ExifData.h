#pragma once

#include <QByteArrayView>
#include <QSizeF>

/// What a camera or a scanner says of a picture (Exif 2.3, JEITA CP-3451C) beside its pixels.
struct ExifData {
    int orientation = 1; ///< 1 to 8; 1 is upright
    QSizeF density;      ///< pixels as stored for an inch; empty where it isn't told

    /// Of a segment of a JPEG file, which may be another one or broken: then nothing is told.
    [[nodiscard]] static ExifData read(QByteArrayView segment);
};
