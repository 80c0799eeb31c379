#include "LineStyleHoverModifier.h"

#include "LineStylePicker.h"

#include <QEvent>

#include <chrono>

// Long enough to cross the gap between the button and the picker.
static constexpr std::chrono::milliseconds dismissDelay{200};

LineStyleHoverModifier::LineStyleHoverModifier(QWidget& button, LineStylePicker& picker)
    : QObject(&picker), m_button(button), m_picker(picker) {
    m_dismissCheck.setSingleShot(true);
    m_dismissCheck.setInterval(dismissDelay);
    connect(&m_dismissCheck, &QTimer::timeout, this, &LineStyleHoverModifier::dismissUnlessUnderPointer);
    button.installEventFilter(this);
    picker.installEventFilter(this);
}

LineStyleHoverModifier::~LineStyleHoverModifier() = default;

bool LineStyleHoverModifier::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Enter && watched == &m_button && m_picker.isHidden())
        m_picker.popUp(m_button);
    else if (event->type() == QEvent::Leave)
        m_dismissCheck.start();
    return QObject::eventFilter(watched, event);
}

void LineStyleHoverModifier::dismissUnlessUnderPointer() {
    if (!m_button.underMouse() && !m_picker.underMouse())
        m_picker.dismiss();
}
