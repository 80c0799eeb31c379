#pragma once

#include <QString>
#include <QStringView>

/// HTML as its authors write it, made ready for Qt's reader of rich text, which knows but a part of the language.
namespace HtmlSource {

/// The same document with attributes in double quotes, elements that Qt doesn't know as divisions, drawings within the
/// text as pictures, and without what isn't shown: scripts, templates, hidden elements, menus of choices, films.
/// Takes time in proportion to the text.
[[nodiscard]] QString simplified(QStringView html);

} // namespace HtmlSource
