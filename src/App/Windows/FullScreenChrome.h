#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

class QWidget;

/// Puts away what surrounds the pages while a window takes the whole screen, and brings it back while the pointer is at
/// the upper edge or in what came down from there, or a field in that has the keyboard. Main thread only.
class FullScreenChrome : public QObject {
    Q_OBJECT

public:
    /// `show` puts everything in place or away; `height` is how far down it reaches, in pixels of the window.
    FullScreenChrome(QWidget& window, std::function<void(bool shows)> show, std::function<int()> height);
    ~FullScreenChrome() override;

    [[nodiscard]] bool isShown() const { return m_shows; }

protected:
    /// Follows the pointer of the window, and the window into the full screen and back.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void windowStateChanged();
    void pointerMoved(int y);
    [[nodiscard]] bool hasKeyboard() const;
    void setShown(bool shows);

    QWidget& m_window;
    std::function<void(bool)> m_show;
    std::function<int()> m_height;
    bool m_isFullScreen = false;
    bool m_shows = true;
    QTimer m_leaving; ///< runs out when the pointer has been below for a moment
};
