#pragma once

#include <QString>

/// The elements of HTML by their kinds. Names are in lower case.
namespace HtmlElements {

/// Without an end.
[[nodiscard]] bool isVoid(const QString& name);
/// With a content that is no HTML up to their end.
[[nodiscard]] bool isRawText(const QString& name);
[[nodiscard]] bool isNeverShown(const QString& name);
/// What Qt calls an element that it would take for text in the line; others have their own name.
[[nodiscard]] QString nameForQt(const QString& name);
/// Whether it starts a line of its own, by its name for Qt.
[[nodiscard]] bool isBlock(const QString& name);
/// Whether it may end without a tag.
[[nodiscard]] bool needsNoEnd(const QString& name);
/// Whether an element ends where the other one starts.
[[nodiscard]] bool isEndedBy(const QString& name, const QString& next);

} // namespace HtmlElements
