#pragma once

#include <QString>

class QTextCursor;

/// What is copied from a reply.
namespace MarkdownSelection {

/// The selected text as a person would type it: formulas as their source, cells of a row with tabs between, lines with
/// line feeds between.
[[nodiscard]] QString plainText(const QTextCursor& cursor);

} // namespace MarkdownSelection
