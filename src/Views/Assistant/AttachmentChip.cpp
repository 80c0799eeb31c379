#include "AttachmentChip.h"

#include "ElidedLabel.h"
#include "PlainText.h"
#include "SymbolIcon.h"
#include "SymbolPicture.h"
#include "ToolbarButton.h"

#include <QAction>
#include <QHBoxLayout>
#include <QPainter>

static constexpr int symbolSide = 16;
static constexpr int buttonSide = 24;
static constexpr qreal cornerRadius = 8;

AttachmentChip::AttachmentChip(QWidget* parent) : QFrame(parent), m_name(new ElidedLabel({})) {
    setObjectName(QStringLiteral("attachmentChip"));
    m_name->setObjectName(QStringLiteral("attachmentName"));
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
    const QString line = PlainText::line(name);
    m_name->setLine(isBeingRead ? QStringLiteral("Reading %1…").arg(line) : line);
    if (!isBeingRead)
        m_name->setAccessibleName(QStringLiteral("Attached file: ") + line);
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
