#include "OpenDocumentCard.h"

#include "Palette.h"
#include "SymbolPicture.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

OpenDocumentCard::OpenDocumentCard(QWidget* parent)
    : QFrame(parent), m_selectButton(new QPushButton(QStringLiteral("Select File…"), this)) {
    setObjectName(QStringLiteral("openDocumentCard"));
    setAccessibleName(QStringLiteral("Open a file"));

    m_selectButton->setObjectName(QStringLiteral("selectFile"));
    m_selectButton->setAccessibleName(QStringLiteral("Select File"));
    m_selectButton->setDefault(true);
    m_selectButton->setMinimumSize(150, 36);
    auto* hint = new QLabel(QStringLiteral("or drop a file here"), this);
    hint->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 32, 32, 32);
    layout->setSpacing(14);
    layout->addWidget(new SymbolPicture(QStringLiteral("doc.badge.plus"), 48), 0, Qt::AlignHCenter);
    layout->addWidget(m_selectButton, 0, Qt::AlignHCenter);
    layout->addWidget(hint);
}

OpenDocumentCard::~OpenDocumentCard() = default;

void OpenDocumentCard::setDropTargeted(bool targeted) {
    if (targeted == m_isDropTargeted)
        return;
    m_isDropTargeted = targeted;
    update();
}

void OpenDocumentCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor outline = palette().color(QPalette::WindowText);
    outline.setAlphaF(0.35F);
    QColor background = palette().color(QPalette::Base);
    if (m_isDropTargeted) {
        outline = Palette::brandBlue;
        background = Palette::brandBlue;
        background.setAlphaF(0.16F);
    }
    QPen pen(outline, m_isDropTargeted ? 2.5 : 1.5);
    pen.setDashPattern({5, 4});
    painter.setPen(pen);
    painter.setBrush(background);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5), 14, 14);
}
