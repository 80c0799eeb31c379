#pragma once

#include "AnnotationEditor.h"

class NoteAnnotation;

/// Writes on a note: an editor over its paper, which follows it on the page; its letters don't grow with the zoom. The
/// wording of a note isn't undoable.
class NoteEditor : public AnnotationEditor {
    Q_OBJECT

public:
    explicit NoteEditor(AnnotatingPDFView& view);
    ~NoteEditor() override;

    /// Opens the note with all its text selected. `isNew` when it was only just made: it goes again if nothing is
    /// written on it.
    void start(const std::shared_ptr<NoteAnnotation>& note, const std::shared_ptr<PDFPage>& page, bool isNew);
    /// Gives the note the text. Without any (white space aside) a new note is removed, undoably, and an old one keeps
    /// what it said.
    void commit() override;
    /// Leaves an old note as it was and removes a new one, undoably.
    void cancel() override;

private:
    void layOut() override;
    void addOpenTo(PDFDraft& draft) const override;
    void close() override;
    [[nodiscard]] bool isSubjectThere() const override;
    void removeNote(const std::shared_ptr<NoteAnnotation>& note, const std::shared_ptr<PDFPage>& page);

    std::shared_ptr<NoteAnnotation> m_note;
    bool m_isNew = false;
};
