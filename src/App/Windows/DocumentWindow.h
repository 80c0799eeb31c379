#pragma once

#include <QMainWindow>
#include <QTimer>

#include <memory>
#include <vector>

class AppActions;
class ContentView;
class Document;
class DocumentController;
class DocumentDialogs;
class DocumentTabBar;
class FullScreenChrome;
class MainMenu;
class PageMimeData;
class PDFEditorDocument;
class QStackedWidget;
class SlowSaves;
class UserDefaults;

/// What the windows of the program share. Everything outlives them.
struct WindowServices {
    DocumentController& controller;
    UserDefaults& defaults;
    AppActions& actions;
    DocumentDialogs& dialogs;
};

/// The window of all open documents, a tab for each. It comes up maximized and goes away with its last tab.
class DocumentWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit DocumentWindow(WindowServices& services);
    ~DocumentWindow() override;

    void addDocument(const std::shared_ptr<PDFEditorDocument>& document);
    /// Without asking anything.
    void removeDocument(const Document& document);

    /// Null when the document has no tab here.
    [[nodiscard]] ContentView* contentView(const Document& document) const;
    /// That of the current tab; null in a window without tabs.
    [[nodiscard]] ContentView* currentContentView() const;
    /// In the order of the tabs.
    [[nodiscard]] std::vector<ContentView*> contentViews() const;
    void setCurrent(ContentView* view);

    /// Shows the window and brings it to the front; maximizes it the first time.
    void present();

Q_SIGNALS:
    /// A file has filled the untitled document of a tab.
    void openedInPlace();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    /// Escape leaves the full screen.
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showChrome(bool shows);
    [[nodiscard]] int chromeHeight() const;
    void addTabSwitching();
    void closeTab(QWidget* content);
    /// The document that pages which are dragged can be copied into; null when it is theirs, or locked.
    [[nodiscard]] static std::shared_ptr<PDFEditorDocument> receiver(const ContentView* view,
                                                                     const PageMimeData* pages);
    void takePages(const ContentView* view, const PageMimeData& pages);
    void showTabMenu(QWidget* content, QPoint globalPosition);
    void announceSaving(const Document& document, bool isSaving);
    void currentTabChanged();
    [[nodiscard]] QString title(const Document& document) const;
    void updateTab(ContentView* view);
    void updateTitle();
    void updateMenu();

    WindowServices& m_services;
    MainMenu* m_menu;
    DocumentTabBar* m_tabBar;
    QStackedWidget* m_stack;
    SlowSaves* m_slowSaves;
    FullScreenChrome* m_chrome;
    bool m_didMaximize = false;
    QTimer m_sizeRest; ///< runs out when the size has rested for a moment
};
