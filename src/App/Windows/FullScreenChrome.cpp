#include "FullScreenChrome.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWidget>

#include <chrono>
#include <utility>

static constexpr int edge = 3;       // pixels at the upper edge that bring it back
static constexpr int tolerance = 24; // pixels below it that still count as in it

FullScreenChrome::FullScreenChrome(QWidget& window, std::function<void(bool)> show, std::function<int()> height)
    : QObject(&window), m_window(window), m_show(std::move(show)), m_height(std::move(height)) {
    using namespace std::chrono_literals;
    m_leaving.setSingleShot(true);
    m_leaving.setInterval(400ms);
    connect(&m_leaving, &QTimer::timeout, this, [this] {
        // A menu that hangs down from there keeps it, and so does a field in it that has the keyboard.
        if (QApplication::activePopupWidget() || hasKeyboard())
            m_leaving.start();
        else
            setShown(false);
    });
    m_window.installEventFilter(this);
}

FullScreenChrome::~FullScreenChrome() = default;

bool FullScreenChrome::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_window && event->type() == QEvent::WindowStateChange) {
        windowStateChanged();
    } else if (m_isFullScreen && event->type() == QEvent::MouseMove && watched->isWidgetType()) {
        const auto* widget = static_cast<QWidget*>(watched);
        if (widget->window() == &m_window) {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (mouse->buttons() == Qt::NoButton)
                pointerMoved(widget->mapTo(&m_window, mouse->position().toPoint()).y());
        }
    }
    return false;
}

void FullScreenChrome::windowStateChanged() {
    const bool isFullScreen = m_window.isFullScreen();
    if (std::exchange(m_isFullScreen, isFullScreen) == isFullScreen)
        return;
    m_leaving.stop();
    if (isFullScreen)
        qApp->installEventFilter(this);
    else
        qApp->removeEventFilter(this);
    setShown(!isFullScreen);
}

void FullScreenChrome::pointerMoved(int y) {
    if (y <= edge) {
        m_leaving.stop();
        setShown(true);
    } else if (y <= m_height() + tolerance) {
        m_leaving.stop();
    } else if (m_shows && !m_leaving.isActive()) {
        m_leaving.start();
    }
}

bool FullScreenChrome::hasKeyboard() const {
    const QWidget* focus = m_window.focusWidget();
    return focus && focus->isVisible() && focus->mapTo(&m_window, QPoint()).y() < m_height() &&
           (qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QAbstractSpinBox*>(focus) ||
            qobject_cast<const QComboBox*>(focus));
}

void FullScreenChrome::setShown(bool shows) {
    if (std::exchange(m_shows, shows) != shows)
        m_show(shows);
}
