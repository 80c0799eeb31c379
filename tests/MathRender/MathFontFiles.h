#pragma once

#include "FontError.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The files that the tests of math fonts start from, and what is made of them.
namespace MathFontFiles {

/// "latinmodern-math", the one font that is always there.
[[nodiscard]] QString latinModern();

/// All of a file; the test fails when it can't be read.
[[nodiscard]] QByteArray contents(const QString& path);
void write(const QString& path, const QByteArray& bytes);

/// The file of Latin Modern Math, and its property list.
[[nodiscard]] QByteArray fontBytes();
[[nodiscard]] QByteArray propertyListBytes();

/// A TrueType font with a MATH table.
[[nodiscard]] QByteArray trueTypeBytes();
/// `font` as if it had no table `tag`, by giving that table another tag.
[[nodiscard]] QByteArray withoutTable(QByteArray font, const QByteArray& tag);

/// Which `FontError` `use` throws; none when it throws none.
template <typename Use>
[[nodiscard]] std::optional<FontError::Kind> fontErrorOf(Use&& use) {
    try {
        use();
    } catch (const FontError& error) {
        return error.kind();
    }
    return std::nullopt;
}

} // namespace MathFontFiles
