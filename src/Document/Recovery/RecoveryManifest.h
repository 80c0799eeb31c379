#pragma once

#include "RecoveryDescription.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The file of a recovery record that says what the record holds. A document's bytes are those of `base` with those of
/// `update` after them.
struct RecoveryManifest {
    struct Part {
        QString fileName; ///< in the record's folder, and no path
        qint64 byteCount = 0;
        QByteArray sha256; ///< 32 bytes
    };

    /// A larger file is none of ours.
    static constexpr qint64 maximumEncodedSize = qint64(64) * 1024;
    /// No document of more bytes can be opened.
    static constexpr qint64 maximumPartSize = qint64(4) << 30;

    RecoveryDescription description;
    Part base;
    std::optional<Part> update;

    /// JSON.
    [[nodiscard]] QByteArray encoded() const;
    /// None for what isn't complete or can't be true. Of what is only told to the reader, odd values are put right.
    [[nodiscard]] static std::optional<RecoveryManifest> decoded(const QByteArray& json);

    /// "base-7" is the seventh part of its record.
    [[nodiscard]] static QString partName(const QString& kind, qint64 number);
    /// The number in such a name; none for any other name.
    [[nodiscard]] static std::optional<qint64> partNumber(const QString& fileName);
};
