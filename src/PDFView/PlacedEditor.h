#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class AnnotatingPDFView;
class InlineFreeTextEditor;
class PDFDocument;
class PDFPage;

/// What the editors over a page have in common: one `InlineFreeTextEditor` at a time, which keeps to its place on the
/// page while that is scrolled and zoomed, and goes without a commit when the page leaves the viewer.
///
/// Opening one ends the editing in every other editor of the viewer, as does giving the keyboard to something else;
/// when one closes that had the keyboard, the viewer gets it. Belongs to the viewer, which must outlive it; one that is
/// open at its end is dropped without a commit. Main thread only.
class PlacedEditor : public QObject {
    Q_OBJECT

public:
    ~PlacedEditor() override;

    [[nodiscard]] bool isOpen() const { return !m_editor.isNull(); }
    /// Takes what was typed into the document and closes the editor. Does nothing when none is open.
    virtual void commit() = 0;

Q_SIGNALS:
    void openChanged(bool isOpen);

protected:
    explicit PlacedEditor(AnnotatingPDFView& view);

    /// Commits this editor and ends the editing in all others of the viewer.
    void endOthers();
    /// Makes the editor, not yet shown; none may be open.
    InlineFreeTextEditor& open(const std::shared_ptr<PDFPage>& page, const QString& objectName,
                               const QString& accessibleName);
    /// Shows the editor at its place and gives it the keyboard.
    void show();
    /// Takes the editor away and forgets what it was for.
    virtual void close();

    /// Puts the open editor where it belongs now. Its page is in the viewer.
    virtual void layOut() = 0;
    /// Whether what is being edited is still on the page.
    [[nodiscard]] virtual bool isSubjectThere() const { return true; }
    /// The page or the subject is gone: closes without a commit.
    virtual void abandon() { close(); }

    /// Whether there is something to commit. Abandons an open editor whose page or subject is gone.
    [[nodiscard]] bool canCommit();

    [[nodiscard]] AnnotatingPDFView& view() const { return m_view; }
    /// Null when none is open.
    [[nodiscard]] InlineFreeTextEditor* editor() const;
    [[nodiscard]] const std::shared_ptr<PDFPage>& page() const { return m_page; }

private:
    [[nodiscard]] bool isInView() const;
    void follow();
    void followLater();

    AnnotatingPDFView& m_view;
    QPointer<InlineFreeTextEditor> m_editor; // a child of the viewport
    std::shared_ptr<PDFPage> m_page;
    std::weak_ptr<PDFDocument> m_document; // whose signals are being listened to
    bool m_isFollowQueued = false;
};
