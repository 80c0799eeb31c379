#pragma once

#include <QString>

#include <stdexcept>

/// Why a math font can't be used. Its files come with the program, so this is a fault of the installation, never of a
/// formula. `what()` is a sentence in UTF-8 that names the file or font.
class FontError : public std::runtime_error {
public:
    enum class Kind {
        invalidFontFile,  ///< not a font, damaged, or without outlines that scale
        fontPathNotFound, ///< the font file or its property list isn't in the bundle folder
        initFontError,    ///< the font engine could not be started
        registerFailed,   ///< a font that can't be asked for the glyph of a character
        invalidMathTable, ///< the property list can't be read or has not the structure of one
    };

    FontError(Kind kind, const QString& sentence) : std::runtime_error(sentence.toStdString()), m_kind(kind) {}

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] QString sentence() const { return QString::fromUtf8(what()); }

private:
    Kind m_kind;
};
