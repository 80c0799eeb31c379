#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

/// The keys of every command of the program, in one table, so that none is given away twice.
namespace Shortcuts {

/// The keys of the command whose action has the object name `command`; none for a command without keys. Menus and help
/// texts show the first.
[[nodiscard]] QList<QKeySequence> of(const QString& command);

/// The first key of the command as the desktop writes it, such as "Ctrl+K"; empty for a command without keys.
[[nodiscard]] QString text(const QString& command);

/// The object names of all commands that have keys.
[[nodiscard]] QStringList commands();

} // namespace Shortcuts
