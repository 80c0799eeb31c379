#pragma once

#include "ObjectStore.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <set>

/// The scripts of a form's fields (JavaScript actions, ISO 32000-1, 12.6.4.16), which are kept and never run.
namespace FieldScripts {

/// What a script names. Fields it may call by all texts in it, and by the parts of those that list several.
struct Names {
    QStringList texts;
    bool computes = false;     ///< it finds fields in other ways as well, whose names can't be told
    std::set<QString> words;   ///< all names in its code, of functions and variables among others
    std::set<QString> defined; ///< those of its own functions and variables that other scripts can use
};
/// Empty for an action without a script.
[[nodiscard]] QString textOf(QPDFObjectHandle action);
[[nodiscard]] Names namesIn(QPDFObjectHandle action);

using Test = std::function<bool(const Names& names)>;
/// Takes out of a field or a widget what sets off a script for which `isMeant` is true.
void dropWhere(QPDFObjectHandle field, const Test& isMeant);

} // namespace FieldScripts
