#pragma once

#include <QVariantMap>

class QByteArray;
class QString;

/// The property list of a math font: what the typesetter needs of the OpenType MATH table in the font file `bytes`,
/// with the names of `GlyphNames` and the keys of `MathTableKeys`. Device adjustments are left out: they are for
/// pixels. Throws `FontError`: `invalidMathTable` when the font has no MATH table, or as `CGFont` does. `name` stands
/// for the file in errors.
[[nodiscard]] QVariantMap propertyListOfMathTable(const QByteArray& bytes, const QString& name);
