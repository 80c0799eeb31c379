#pragma once

#include "PageAlert.h"
#include "PageOperations.h"

#include <QCoroTask>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class PDFDocument;
class PDFEditorDocument;
class PDFSource;
class PDFViewCoordinator;
class CopySheet;
class QAction;
class QDialog;
class QLabel;
class QMessageBox;
class QMimeData;
class RecognitionProgress;
class ThumbnailList;

/// Every page of the document as a numbered thumbnail, with what can be done to pages: they are selected, moved by
/// dragging, deleted, taken out, and brought in from other files and windows. Main thread only.
///
/// Commands that read or write files go on while the window is used, and work on the document as it was when they were
/// given.
class ThumbnailSidebar : public QWidget {
    Q_OBJECT

public:
    /// `coordinator` must outlive the sidebar.
    ThumbnailSidebar(std::shared_ptr<PDFEditorDocument> document, PDFViewCoordinator& coordinator,
                     QWidget* parent = nullptr);
    ~ThumbnailSidebar() override;

    /// Places of the selected pages.
    [[nodiscard]] PageIndices selection() const;
    /// None while no alert is shown.
    [[nodiscard]] std::optional<PageAlert> pendingAlert() const;
    [[nodiscard]] ThumbnailList& list() const { return *m_list; }

    /// A click on the page: alone it goes there and drops the selection, with Ctrl it selects that page or not, with
    /// Shift all from the one that was clicked before.
    void handleTap(int index, Qt::KeyboardModifiers modifiers);

    // The commands. Each asks for the files that it needs, and ends when the user gives up.

    /// Brings in a file behind the first selected page, or at the end.
    void mergeDocument();
    /// Puts several files together into a new one.
    void mergeMultipleFiles();
    /// Makes two files of the document, the second from the first selected page, or from the page that is shown.
    void splitDocument();
    /// Adds a layer of text to all pages that have none, beside the work in the window.
    void recognizeText();
    // Copies, which leave the document as it is.
    void compressDocument();
    void setPassword();
    void removePassword();
    // Each opens its sheet over the window.
    void editMetadata();
    void editBookmarks();
    void addWatermark();
    void extractPages(const PageIndices& indices);
    void deletePages(const PageIndices& indices);
    /// Into the gap before the page at `gap`, from 0 to the number of pages.
    void movePages(const PageIndices& indices, int gap);
    /// Takes what was dropped into that gap: pages of this document or another, PDF files, or the index of a page as
    /// text. False when it is something else.
    bool handleDrop(const QMimeData& dragged, int gap);

Q_SIGNALS:
    /// A sentence of what has been done.
    void announced(const QString& sentence);

protected:
    // Above and below the list a drag scrolls it as at its edges.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    using Documents = std::vector<std::shared_ptr<PDFDocument>>;

    [[nodiscard]] QWidget* makeHeader();
    [[nodiscard]] QWidget* makeSelectionBar();
    [[nodiscard]] QAction* addCommand(const QString& name, const QString& text, std::function<void()> run);
    void showMenu(int row, QPoint globalPosition);
    void updateSelectionBar();
    void followPages();
    void goToPage(int row);
    [[nodiscard]] QPoint placeInList(const QDropEvent& event) const;

    /// Reads the files and asks for the passwords that they need; `read` gets them in order, unless one of them fails.
    void readFiles(const QList<QUrl>& urls, std::function<void(const Documents& documents)> read);
    [[nodiscard]] std::shared_ptr<PDFDocument> openSource(const std::shared_ptr<PDFSource>& source, const QUrl& url);
    void bringIn(const PDFDocument& source, int index);
    struct NewFile {
        std::shared_ptr<PDFDocument> document;
        QString path;
    };
    void writeFiles(const std::vector<NewFile>& files, const QString& sentence, const PageAlert& success,
                    const QString& failure);
    static QCoro::Task<> recognize(QPointer<ThumbnailSidebar> self, QPointer<RecognitionProgress> progress);
    /// What the names of its copies begin with.
    [[nodiscard]] QString baseName() const;
    /// Over the window, which it blocks; it deletes itself when it is closed.
    void openSheet(QDialog* sheet);
    void openCopySheet(CopySheet* sheet);
    void saveMerged(const Documents& documents);
    void showAlert(const PageAlert& alert, const QString& symbolName = QStringLiteral("exclamationmark.triangle"));
    /// After a command has changed pages.
    void pagesHaveChanged();
    void announceMove(const PageIndices& from, int gap);

    std::shared_ptr<PDFEditorDocument> m_document;
    PDFViewCoordinator& m_coordinator;
    ThumbnailList* m_list;
    QWidget* m_selectionBar = nullptr;
    QLabel* m_selectionCount = nullptr;
    QPersistentModelIndex m_lastClicked; ///< where a selection with Shift begins
    std::optional<PageAlert> m_alert;
    QPointer<QMessageBox> m_alertBox;
    QPointer<QDialog> m_activeSheet;             ///< null unless one is open
    QPointer<RecognitionProgress> m_recognition; ///< null unless one runs
};
