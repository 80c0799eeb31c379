#pragma once

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

class AppActions;
class DocumentController;
class PDFEditorDocument;
class QAction;
class QMainWindow;
class QMenu;
class WorkspaceActions;

/// The menu bar of one window. Its commands act on the document that it was last told of, and are enabled only while
/// they can do something.
class MainMenu : public QObject {
    Q_OBJECT

public:
    /// Fills the menu bar of `window`, which owns this object. `actions` and `controller` must outlive it.
    MainMenu(QMainWindow& window, AppActions& actions, DocumentController& controller);
    ~MainMenu() override;

    /// `document` is null in a window without one, and `workspace` while it isn't being shown.
    void setDocument(const std::shared_ptr<PDFEditorDocument>& document, WorkspaceActions* workspace);

    /// The commands about the document as a whole, for the menu of its tab; null separates.
    [[nodiscard]] QList<QAction*> tabActions() const;

Q_SIGNALS:
    /// The command "Close".
    void closeRequested();
    /// An entry of "Open Recent".
    void openRecentRequested(const QUrl& url);

private:
    QAction* add(QMenu* menu, const QString& name, const QString& text, std::function<void()> triggered);
    void makeMenus(AppActions& actions);
    void fillRecentMenu();
    void fillWorkspaceMenus();
    void updateDocumentActions();
    /// Lets the text editor over a page that has the keyboard act: while something is typed there, undo is about that.
    /// False when there is none.
    template <typename Action>
    bool askEditor(const Action& action);

    QMainWindow& m_window;
    DocumentController& m_controller;
    std::shared_ptr<PDFEditorDocument> m_document;
    std::vector<QMetaObject::Connection> m_documentConnections;
    /// The commands of a window that shows no document: all disabled.
    WorkspaceActions* m_noWorkspace;
    QPointer<WorkspaceActions> m_workspace;

    QMenu* m_fileMenu = nullptr;
    QMenu* m_recentMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QMenu* m_goMenu = nullptr;
    QMenu* m_toolsMenu = nullptr;
    QAction* m_save = nullptr;
    QAction* m_saveAs = nullptr;
    QAction* m_duplicate = nullptr;
    QAction* m_revert = nullptr;
    QAction* m_close = nullptr;
    QPointer<QAction> m_print; ///< the workspace's
    QAction* m_afterPrint = nullptr;
    QAction* m_undo = nullptr;
    QAction* m_redo = nullptr;
    QAction* m_fullScreen = nullptr;
    QAction* m_settings = nullptr; ///< the application's
};
