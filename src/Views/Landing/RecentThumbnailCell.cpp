#include "RecentThumbnailCell.h"

#include "Palette.h"
#include "PlainText.h"
#include "RecentThumbnailLoader.h"
#include "ThumbnailCache.h"

#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QPainter>

static constexpr int cellWidth = 130;
static constexpr int margin = 8;
// Half of the loader's picture, so that it is sharp on a screen with two pixels to the point.
static constexpr int pageHeight = RecentThumbnailLoader::thumbnailHeight / 2;

RecentThumbnailCell::RecentThumbnailCell(const QUrl& url, RecentThumbnailLoader& loader, QWidget* parent)
    : QAbstractButton(parent), m_url(url) {
    setText(PlainText::line(QFileInfo(url.toLocalFile()).completeBaseName()));
    setShortcut({}); // an "&" of the name marks no key
    setObjectName(QStringLiteral("recent-") + url.toLocalFile());
    setAccessibleName(text());
    setToolTip(PlainText::toolTip(QDir::toNativeSeparators(url.toLocalFile())));
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    load(loader);
}

RecentThumbnailCell::~RecentThumbnailCell() = default;

void RecentThumbnailCell::load(RecentThumbnailLoader& loader) {
    const QString key = ThumbnailCache::recentKey(m_url.toLocalFile());
    m_thumbnail = ThumbnailCache::image(key);
    if (!m_thumbnail.isNull())
        return;
    loader.load(m_url, this, [this, key](const QImage& image) {
        ThumbnailCache::insert(key, image);
        m_thumbnail = image;
        update();
    });
}

QSize RecentThumbnailCell::sizeHint() const {
    return {cellWidth, margin + pageHeight + margin + fontMetrics().height() + margin};
}

void RecentThumbnailCell::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void RecentThumbnailCell::drawPage(QPainter& painter, const QRect& area) const {
    const QSize letter(85, 110);
    const QSize size = (m_thumbnail.isNull() ? letter : m_thumbnail.size()).scaled(area.size(), Qt::KeepAspectRatio);
    QRect page({}, size);
    page.moveCenter(area.center());
    page.moveBottom(area.bottom());
    painter.fillRect(page, Qt::white);
    if (!m_thumbnail.isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(page, m_thumbnail);
    }
    QColor edge = palette().color(QPalette::WindowText);
    edge.setAlphaF(0.25F);
    painter.setPen(edge);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(page).adjusted(-0.5, -0.5, 0.5, 0.5));
}

void RecentThumbnailCell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (underMouse() || hasFocus() || isDown()) {
        QColor background = Palette::brandBlue;
        background.setAlphaF(isDown() ? 0.28F : 0.14F);
        painter.setPen(hasFocus() ? QPen(Palette::brandBlue, 2) : QPen(Qt::NoPen));
        painter.setBrush(background);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
    }
    drawPage(painter, QRect(margin, margin, width() - 2 * margin, pageHeight));

    const QRect nameArea(margin, 2 * margin + pageHeight, width() - 2 * margin, fontMetrics().height());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(nameArea, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, nameArea.width()));
}
