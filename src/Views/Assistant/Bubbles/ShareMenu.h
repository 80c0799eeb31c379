#pragma once

#include <QString>

#include <functional>

class QWidget;

/// The ways to hand a text to somebody else. Desktops have no picker for that, so Quillo has a small menu of its own.
/// Main thread only.
namespace ShareMenu {

/// Shows the menu below `anchor` and returns at once: send by e-mail, with the user's mail program, or save as a text
/// file. `failed` gets the user's sentence when one of them didn't work; it isn't called once `anchor` is gone.
void popUp(const QString& text, QWidget& anchor, std::function<void(const QString& sentence)> failed);

} // namespace ShareMenu
