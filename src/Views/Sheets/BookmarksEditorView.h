#pragma once

#include <QDialog>

#include <memory>

class BookmarkList;
class BookmarkModel;
class PDFEditorDocument;
class PDFViewCoordinator;
class QLabel;
class QPushButton;
class QStackedLayout;
class QToolButton;

/// The sheet for the bookmarks of a document. Each change is in the document at once, so that closing the sheet has
/// nothing left to do; what was done here can be undone here too, but no more than that. Main thread only.
class BookmarksEditorView : public QDialog {
    Q_OBJECT

public:
    /// `coordinator` must outlive the sheet.
    BookmarksEditorView(std::shared_ptr<PDFEditorDocument> document, PDFViewCoordinator& coordinator,
                        QWidget* parent = nullptr);
    ~BookmarksEditorView() override;

    /// Adds one for the page that is shown, and opens its title for typing.
    void addBookmark();
    /// Takes over a title that is being typed, however the sheet ends.
    void done(int result) override;

private:
    void makeLayout();
    void makeUndo();
    void goToPage(int row);
    void showState();

    std::shared_ptr<PDFEditorDocument> m_document;
    PDFViewCoordinator& m_coordinator;
    BookmarkModel* m_model;
    BookmarkList* m_list;
    QStackedLayout* m_content = nullptr; ///< the list, and what stands in its place while there are none
    QLabel* m_empty;
    QPushButton* m_delete;
    QToolButton* m_up;
    QToolButton* m_down;
    int m_undone = 0; ///< steps that were taken back here and can be done again
};
