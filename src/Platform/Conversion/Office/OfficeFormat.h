#pragma once

#include <QString>

#include <optional>

/// The program of LibreOffice that a file belongs to.
enum class OfficeComponent { writer, calc, impress };

/// What an office file is by its bytes.
struct OfficeFormat {
    OfficeComponent component = OfficeComponent::writer;
    QString suffix;       ///< that this format's files have, without a dot
    QString importFilter; ///< LibreOffice's name for it

    /// None when the bytes are nothing that a file of this name can hold: another kind of file, plain text, a protected
    /// document, or one that unpacks to more than anybody could have written. A file of an older or a newer version of
    /// the same program, or a web page under the old endings, as web sites hand out, is what people expect it to be.
    /// Any thread; waits for the disk.
    [[nodiscard]] static std::optional<OfficeFormat> of(const QString& path);
};
