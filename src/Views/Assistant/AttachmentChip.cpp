#include "AttachmentChip.h"

#include "PlainText.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

static constexpr int symbolSide = 16;
static constexpr int buttonSide = 24;
static constexpr qreal cornerRadius = 8;

AttachmentChip::AttachmentChip(QWidget* parent) : QFrame(parent), m_name(new QLabel) {
    setObjectName(QStringLiteral("attachmentChip"));
    m_name->setObjectName(QStringLiteral("attachmentName"));
    m_name->setTextFormat(Qt::PlainText);
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* remove = new QAction(SymbolIcon::icon(QStringLiteral("xmark.circle.fill")), QString(), this);
    remove->setObjectName(QStringLiteral("removeAttachment"));
    remove->setToolTip(QStringLiteral("Remove attachment"));
    connect(remove, &QAction::triggered, this, &AttachmentChip::removeRequested);
    auto* button = new ToolbarButton(remove);
    button->setAccessibleName(remove->toolTip());
    button->setIconSize({symbolSide, symbolSide});
    button->setFixedSize(buttonSide, buttonSide);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 3, 4, 3);
    layout->setSpacing(6);
    layout->addWidget(new SymbolPicture(QStringLiteral("doc.text.fill"), symbolSide));
    layout->addWidget(m_name, 1);
    layout->addWidget(button);
}

AttachmentChip::~AttachmentChip() = default;

void AttachmentChip::setName(const QString& name, bool isBeingRead) {
    m_caption = isBeingRead ? QStringLiteral("Reading %1…").arg(name) : name;
    m_name->setAccessibleName(isBeingRead ? m_caption : QStringLiteral("Attached file: ") + name);
    setToolTip(PlainText::toolTip(name));
    showName();
}

void AttachmentChip::showName() {
    m_name->setText(m_name->fontMetrics().elidedText(m_caption, Qt::ElideMiddle, m_name->width()));
}

void AttachmentChip::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    layout()->activate();
    showName();
}

void AttachmentChip::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor face = palette().color(QPalette::WindowText);
    face.setAlphaF(0.08F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
}
