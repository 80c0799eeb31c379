#pragma once

#include <QMainWindow>

#include <memory>
#include <vector>

class AppActions;
class ContentView;
class Document;
class DocumentController;
class DocumentDialogs;
class DocumentTabBar;
class MainMenu;
class PDFEditorDocument;
class QStackedWidget;
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

private:
    void addTabSwitching();
    void closeTab(QWidget* content);
    void currentTabChanged();
    void updateTab(ContentView* view);
    void updateTitle();
    void updateMenu();

    WindowServices& m_services;
    MainMenu* m_menu;
    DocumentTabBar* m_tabBar;
    QStackedWidget* m_stack;
    bool m_didMaximize = false;
};
