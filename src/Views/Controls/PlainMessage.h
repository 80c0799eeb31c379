#pragma once

#include <QString>

class QMessageBox;

/// Message boxes that show the words of documents, file names and servers, which may look like markup, to the letter.
/// Main thread only.
namespace PlainMessage {

/// Sets what the box says: the question or the fault, and below it, in smaller letters, what follows from it.
void setText(QMessageBox& box, const QString& text, const QString& informativeText);

/// Gives the box the program's name and a symbol before its text.
void setSymbol(QMessageBox& box, const QString& symbolName);

} // namespace PlainMessage
