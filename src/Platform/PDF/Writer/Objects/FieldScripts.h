#pragma once

#include "ObjectStore.h"

#include <QString>
#include <QStringList>

#include <functional>

/// The scripts of a form's fields (JavaScript actions, ISO 32000-1, 12.6.4.16), which are kept and never run.
namespace FieldScripts {

/// What a script may call fields by: all texts in it, and the parts of those that list several.
struct Names {
    QStringList texts;
    bool computes = false; ///< it finds fields in other ways as well, whose names can't be told
};
[[nodiscard]] Names namesIn(const QString& script);

/// Takes out of a field or a widget what sets off a script that names a field for which `isOther` is true; with
/// `anyComputed` those too of which it can't be told.
void dropAbout(QPDFObjectHandle field, const std::function<bool(const QString& name)>& isOther, bool anyComputed);

} // namespace FieldScripts
