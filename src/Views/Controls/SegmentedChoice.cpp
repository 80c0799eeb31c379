#include "SegmentedChoice.h"

#include "ToolbarButton.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>

static constexpr qreal cornerRadius = 6;

SegmentedChoice::SegmentedChoice(const QString& name, const QString& helpText, const QStringList& titles,
                                 QWidget* parent)
    : QWidget(parent), m_buttons(new QButtonGroup(this)) {
    setAccessibleName(name);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    for (const QString& title : titles) {
        auto* button = new ToolbarButton;
        button->setObjectName(title);
        button->setText(title);
        button->setAccessibleName(title);
        button->setToolTip(helpText);
        button->setCheckable(true);
        button->setToolButtonStyle(Qt::ToolButtonTextOnly);
        m_buttons->addButton(button, static_cast<int>(m_buttons->buttons().size()));
        layout->addWidget(button);
    }
    connect(m_buttons, &QButtonGroup::idClicked, this, &SegmentedChoice::chosen);
}

SegmentedChoice::~SegmentedChoice() = default;

int SegmentedChoice::current() const {
    return m_buttons->checkedId();
}

void SegmentedChoice::setCurrent(int index) {
    m_buttons->button(index)->setChecked(true);
}

/// A frame around all segments.
void SegmentedChoice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor frame = palette().color(QPalette::WindowText);
    frame.setAlphaF(0.2F);
    painter.setPen(frame);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), cornerRadius, cornerRadius);
}
