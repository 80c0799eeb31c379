#pragma once

#include <QByteArray>
#include <QFont>
#include <QString>

/// A font that a default appearance names, as the resources of its form describe it. The reader of files and the writer
/// decide by it alike in which font a field's new text is set. Needs the application object.
struct FormFont {
    QString resource;         ///< its name in the resources, without the slash, "Helv"
    QString baseFont;         ///< PostScript name, with the tag of a part of a font; empty when the resources lack it
    bool isSimple = false;    ///< one byte for a character (Type1, TrueType)
    bool isEmbedded = false;  ///< the file has its glyphs
    bool hasEncoding = false; ///< the Encoding key says which glyphs codes mean
    int flags = 0;            ///< of its descriptor (ISO 32000-1, table 123)

    /// False for one of which codes or glyphs aren't known for sure: a composite font, a part of a font, symbols.
    [[nodiscard]] bool isWritable() const;

    /// True when its codes mean letters even where no encoding says so.
    [[nodiscard]] bool isLettered() const;

    /// The PostScript name of the standard text font that is nearest to it. One that can't be written with is replaced
    /// by that.
    [[nodiscard]] QByteArray standardName() const;

    /// The desktop's font that comes nearest to it; `size` is in points.
    [[nodiscard]] QFont nearest(double size) const;

    /// The same for the text of a field, which is saved in the standard font where it can't be in this one.
    [[nodiscard]] QFont ofField(double size) const;
};
