#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>

class PDFDocument;
class PDFPage;
class PageSurface;
class QKeyEvent;
struct PDFDraft;

/// What the editors over a page have in common: one widget at a time, which keeps to its place on the page while that
/// is scrolled and zoomed, and goes without a commit when the page leaves the viewer.
///
/// Return commits and Escape cancels, but for an input method that composes: then they end the composition only.
/// Opening an editor ends the editing in every other one of the viewer, as does giving the keyboard to something else
/// in the window; when one closes that had the keyboard, the viewer gets it. A menu that pops up, the menu bar and
/// another window only borrow the keyboard: the person comes back to what is still being edited.
///
/// A child of the viewer, which must outlive it; one that is open at its end is dropped without a commit. Main thread
/// only.
class PlacedEditor : public QObject {
    Q_OBJECT

public:
    ~PlacedEditor() override;

    [[nodiscard]] bool isOpen() const { return !m_widget.isNull(); }
    /// Takes what was typed into the document and closes the editor. Does nothing when none is open.
    virtual void commit() = 0;
    /// Closes the editor and leaves the document as it was. Does nothing when none is open.
    virtual void cancel() = 0;
    /// Adds to the draft what a commit now would do to the document, and changes nothing. Does so only while one is
    /// open; what an input method still composes isn't part of it.
    void addTo(PDFDraft& draft) const;

Q_SIGNALS:
    void openChanged(bool isOpen);
    /// What stands in the open editor is another than before.
    void typed();

protected:
    explicit PlacedEditor(PageSurface& view);

    /// Commits this editor and all others of the viewer.
    void commitAllEditors();
    /// Takes over a child of the viewport, not yet shown; no other may be open.
    void open(QWidget* widget, const std::shared_ptr<PDFPage>& page, const QString& objectName,
              const QString& accessibleName);
    /// Shows the editor at its place and gives it the keyboard.
    void show();
    /// Takes the editor away and forgets what it was for.
    virtual void close();

    /// An editor is open, and what it edits is in the viewer.
    virtual void addOpenTo(PDFDraft& draft) const = 0;
    /// Puts the open editor where it belongs now. Its page is in the viewer.
    virtual void layOut() = 0;
    /// Whether what is being edited is still on the page.
    [[nodiscard]] virtual bool isSubjectThere() const { return true; }
    /// The page or the subject is gone: closes without a commit.
    virtual void abandon() { close(); }
    /// Whether this press of the Return key breaks the line instead of committing.
    [[nodiscard]] virtual bool breaksLine(const QKeyEvent& key) const;
    /// A press of a key before the widget gets it; true when nothing is left to do for the widget.
    [[nodiscard]] virtual bool pressKey(QKeyEvent& key);

    /// Whether there is something to commit. Abandons an open editor whose page or subject is gone.
    [[nodiscard]] bool canCommit();

    [[nodiscard]] PageSurface& viewer() const { return m_view; }
    /// Null when none is open.
    [[nodiscard]] QWidget* widget() const { return m_widget; }
    [[nodiscard]] const std::shared_ptr<PDFPage>& page() const { return m_page; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] bool isInView() const;
    void follow();
    void followLater();

    PageSurface& m_view;
    QPointer<QWidget> m_widget; // a child of the viewport
    std::shared_ptr<PDFPage> m_page;
    std::weak_ptr<PDFDocument> m_document; // whose signals are being listened to
    bool m_isFollowQueued = false;
    bool m_isComposing = false;
};
