#pragma once

#include <QStringList>

class AnnotatingPDFView;
class PDFFormField;

/// Undo of filling a form field: mirrored settings of its value that register each other, so that undo and redo
/// alternate without limit. Main thread only.
namespace FormFieldUndo {

/// To be called after the user gave the field another value than `before`; does nothing without an undo manager.
/// What is undone and redone scrolls the viewer to the field when that is out of sight, for as long as there is a
/// viewer.
void registerFilling(AnnotatingPDFView& view, const PDFFormField& field, const QStringList& before);

} // namespace FormFieldUndo
