#pragma once

#include <QString>

class QDialog;
class QLabel;
class QPushButton;
class QVBoxLayout;

/// What the sheets of a document window are made of. The caller owns what it gets until it is laid out.
namespace SheetParts {

/// Gives the sheet its title, also as a heading, and the layout that all else goes into.
[[nodiscard]] QVBoxLayout* begin(QDialog& sheet, const QString& title);

/// A button that Return presses only where it is made the default.
[[nodiscard]] QPushButton* button(const QString& text, const QString& name);

} // namespace SheetParts
