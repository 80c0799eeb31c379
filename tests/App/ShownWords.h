#pragma once

#include <QString>

#include <functional>

class QWidget;

/// What the widgets of the program show to a reader, found by their properties, entries and models, so that a widget
/// that comes to be later is met as well. Main thread only.
namespace ShownWords {

/// Gets one text as a reader sees it: markup interpreted and marks of keys taken out where Qt would do that. `place`
/// names the widget's class and what of it shows the text ("QLabel text"); `isEdited` for the content of an editor.
using Visitor = std::function<void(const QString& place, const QString& seen, bool isEdited)>;

/// Of the widget alone, not its children.
void visit(const QWidget& widget, const Visitor& visitor);

/// Of every widget that there is.
void visitAll(const Visitor& visitor);

/// What a reader sees of a text whose format Qt guesses.
[[nodiscard]] QString guessed(const QString& text);

} // namespace ShownWords
