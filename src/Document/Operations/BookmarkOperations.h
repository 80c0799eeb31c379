#pragma once

#include <QString>
#include <QUuid>

#include <vector>

class PDFDocument;
class PDFEditorDocument;
class PDFOutline;
class UndoManager;

/// Bookmarks as people edit them: the document's outline as one flat list, in the order of the pages. Main thread only.
namespace BookmarkOperations {

struct Bookmark {
    QUuid id = QUuid::createUuid(); ///< of this value, not of the entry in the file
    QString title;
    int pageIndex = 0; ///< zero-based
};

/// Appends the entries below `outline` that have a label and lead to a page of `document`, each before those below it.
void collect(const PDFOutline& outline, std::vector<Bookmark>& bookmarks, const PDFDocument& document);

/// In the order of their pages; those of one page keep theirs.
void sort(std::vector<Bookmark>& bookmarks);

/// Makes a flat outline of the bookmarks, sorted, the document's; a bookmark whose page isn't there is left out. Tells
/// `objectWillChange`, and can be undone and redone without limit where there is an undo manager.
void writeBookmarks(const std::vector<Bookmark>& bookmarks, PDFEditorDocument& document, UndoManager* undoManager);

} // namespace BookmarkOperations
