#pragma once

#include <QString>
#include <QVariantMap>

class PDFDocument;
class PDFEditorDocument;
class UndoManager;

/// The four attributes by which a document describes itself, as a person reads and types them.
struct DocumentMetadata {
    QString title;
    QString author;
    QString subject;
    QString keywords; ///< joined with a comma and a blank

    bool operator==(const DocumentMetadata&) const = default;
};

/// The one place where the attributes of an open document are changed. Each change tells `objectWillChange` and can be
/// undone and redone without limit where there is an undo manager; what would change nothing does neither. Main thread.
namespace MetadataOperations {

/// Empty where the document says nothing, or something that is no text.
[[nodiscard]] DocumentMetadata read(const PDFDocument& document);

/// Gives the document these; empty ones, and keywords of commas and blanks alone, go from it. Every other attribute
/// stays, and so does a list of keywords that reads as it did before, with the commas within them.
void save(const DocumentMetadata& metadata, PDFEditorDocument& document, UndoManager* undoManager);

} // namespace MetadataOperations
