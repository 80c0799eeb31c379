#pragma once

#include <QPoint>
#include <QTimer>
#include <QWidget>

class PageMimeData;
class QAction;
class QTabBar;

/// The row of tabs of a document window, with a button for a new tab. Hidden while there is one tab.
class DocumentTabBar : public QWidget {
    Q_OBJECT

public:
    explicit DocumentTabBar(QAction* newTab, QWidget* parent = nullptr);
    ~DocumentTabBar() override;

    /// Adds a tab at the end for the widget that it shows.
    void addTab(QWidget* content);
    void removeTab(QWidget* content);
    void setCurrent(QWidget* content);
    /// `title` is a file name and may hold any characters.
    void setTitle(QWidget* content, const QString& title, bool isEdited, const QString& toolTip);

    /// At first true. While false the row is hidden however many tabs there are.
    void setShown(bool shown);

    [[nodiscard]] int count() const;
    /// Null when there is no tab.
    [[nodiscard]] QWidget* current() const;
    /// In the order of the tabs, which the user may change.
    [[nodiscard]] QWidget* content(int index) const;
    /// The tab `steps` to the right of the current one, past the end from the beginning again.
    [[nodiscard]] QWidget* neighbour(int steps) const;

Q_SIGNALS:
    /// Null when the last tab has gone.
    void currentChanged(QWidget* content);
    void closeRequested(QWidget* content);
    /// The user asks for the menu of a tab, with the mouse or the keyboard.
    void menuRequested(QWidget* content, QPoint globalPosition);
    /// Pages of a document were dropped on a tab. While they hover over it, it comes to the front.
    void pagesDropped(QWidget* content, const PageMimeData& pages);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeCloseButton(QWidget* content);
    void requestMenu(QPoint position);
    [[nodiscard]] bool handleDrag(QEvent* event);
    [[nodiscard]] int index(const QWidget* content) const;

    QTabBar* m_tabs;
    bool m_shown = true;
    QTimer m_hoverTimer; ///< of a drag over a tab
    int m_hoveredTab = -1;
};
