#include "RecoveryRow.h"

#include "ElidedLabel.h"
#include "PlainText.h"
#include "RelativeDateTimeFormatter.h"
#include "SymbolPicture.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

static constexpr QSize pictureArea{72, 90};
static constexpr int spacing = 14;

namespace {

/// Where the document was.
QString placeText(const LostDocument& document) {
    if (document.original == LostDocument::Original::none)
        return QStringLiteral("It has never been saved.");
    return QDir::toNativeSeparators(QFileInfo(document.description.originalPath).path());
}

QString factsText(const RecoveryDescription& description, const QDateTime& now) {
    const QString time = RelativeDateTimeFormatter::localizedString(description.writeTime, now);
    const int count = description.pageCount;
    return count == 1 ? QStringLiteral("%1 · 1 page").arg(time) : QStringLiteral("%1 · %2 pages").arg(time).arg(count);
}

/// What the reader should know before recovering it; empty for nothing.
QString noticeText(LostDocument::Original original) {
    switch (original) {
    case LostDocument::Original::changed:
        return QStringLiteral("The file has changed since. This opens as a new document.");
    case LostDocument::Original::missing:
        return QStringLiteral("The file is gone. This opens as a new document.");
    case LostDocument::Original::none:
    case LostDocument::Original::unchanged:
        break;
    }
    return {};
}

} // namespace

RecoveryRow::RecoveryRow(const LostDocument& document, const QDateTime& now, QWidget* parent)
    : QFrame(parent), m_document(document), m_picture(new QLabel), m_notice(new QWidget), m_noticeText(new QLabel),
      m_recover(new QPushButton(QStringLiteral("Recover"))), m_delete(new QPushButton(QStringLiteral("Delete"))) {
    const QString& name = m_document.description.displayName;
    setObjectName(QStringLiteral("recoveryRow"));
    setAccessibleName(name);
    m_picture->setObjectName(QStringLiteral("picture"));
    m_picture->setFixedSize(pictureArea);
    m_picture->setAlignment(Qt::AlignCenter);
    showPicture();

    m_recover->setObjectName(QStringLiteral("recover"));
    m_recover->setAccessibleName(QStringLiteral("Recover “%1”").arg(name));
    m_delete->setObjectName(QStringLiteral("delete"));
    m_delete->setAccessibleName(QStringLiteral("Delete “%1”").arg(name));
    for (QPushButton* button : {m_recover, m_delete})
        button->setAutoDefault(false);
    connect(m_recover, &QPushButton::clicked, this, &RecoveryRow::recoverRequested);
    connect(m_delete, &QPushButton::clicked, this, &RecoveryRow::deleteRequested);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(spacing, spacing / 2, spacing, spacing / 2);
    layout->setSpacing(spacing);
    layout->addWidget(m_picture);
    layout->addWidget(makeTexts(now), 1);
    layout->addWidget(m_recover);
    layout->addWidget(m_delete);
}

RecoveryRow::~RecoveryRow() = default;

QWidget* RecoveryRow::makeTexts(const QDateTime& now) {
    auto* name = new ElidedLabel(m_document.description.displayName);
    name->setObjectName(QStringLiteral("name"));
    QFont bold = name->font();
    bold.setWeight(QFont::DemiBold);
    name->setFont(bold);
    auto* place = new ElidedLabel(placeText(m_document));
    place->setObjectName(QStringLiteral("place"));
    auto* facts = new ElidedLabel(factsText(m_document.description, now));
    facts->setObjectName(QStringLiteral("facts"));
    makeNotice();
    setNotice(noticeText(m_document.original));

    auto* texts = new QWidget;
    auto* layout = new QVBoxLayout(texts);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(3);
    layout->addStretch();
    for (QWidget* line : std::initializer_list<QWidget*>{name, place, facts, m_notice})
        layout->addWidget(line);
    layout->addStretch();
    return texts;
}

void RecoveryRow::makeNotice() {
    m_noticeText->setObjectName(QStringLiteral("notice"));
    m_noticeText->setTextFormat(Qt::PlainText);
    m_noticeText->setWordWrap(true);
    auto* layout = new QHBoxLayout(m_notice);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(new SymbolPicture(QStringLiteral("exclamationmark.triangle"), fontMetrics().height()), 0,
                      Qt::AlignTop);
    layout->addWidget(m_noticeText, 1);
}

void RecoveryRow::setNotice(const QString& text) {
    m_noticeText->setText(PlainText::paragraphs(text));
    m_notice->setVisible(!text.isEmpty());
    setAccessibleDescription(text);
}

/// A sheet of paper where there is no picture.
void RecoveryRow::showPicture() {
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap(pictureArea * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize letter(85, 110);
    const QSizeF area = pictureArea - QSize(2, 2);
    const QImage& image = m_document.picture;
    QRectF page({}, QSizeF(image.isNull() ? letter : image.size()).scaled(area, Qt::KeepAspectRatio));
    page.moveCenter(QRectF({}, pictureArea).center());
    painter.fillRect(page, Qt::white);
    if (!image.isNull())
        painter.drawImage(page, image);
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(0.25F);
    painter.setPen(edge);
    painter.drawRect(page);
    painter.end();
    m_picture->setPixmap(pixmap);
}

void RecoveryRow::setBusy(bool busy) {
    m_isBusy = busy;
    updateButtons();
}

void RecoveryRow::setFailure(const QString& sentence) {
    m_hasFailed = true;
    m_isBusy = false;
    setNotice(QStringLiteral("It can't be recovered. ") + sentence);
    updateButtons();
}

void RecoveryRow::updateButtons() {
    m_recover->setEnabled(!m_isBusy && !m_hasFailed);
    m_delete->setEnabled(!m_isBusy);
}

void RecoveryRow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        showPicture();
    QFrame::changeEvent(event);
}
