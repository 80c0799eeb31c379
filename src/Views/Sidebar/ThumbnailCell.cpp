#include "ThumbnailCell.h"

#include "Palette.h"
#include "ThumbnailLoader.h"
#include "ThumbnailModel.h"

#include <QAbstractScrollArea>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int sideMargin = 18;
constexpr int topMargin = 9;
constexpr int numberHeight = 20;
constexpr int bottomMargin = 5;
constexpr int numberSize = 11;
constexpr int leastPictureWidth = 70;
constexpr qreal cornerRadius = 8;

QColor translucent(QColor color, float opacity) {
    color.setAlphaF(opacity);
    return color;
}

QFont numberFont(const QFont& usual, bool isCurrent) {
    QFont font = usual;
    font.setPixelSize(numberSize);
    font.setBold(isCurrent);
    return font;
}

} // namespace

ThumbnailCell::ThumbnailCell(const ThumbnailModel& model, ThumbnailLoader& loader, QObject* parent)
    : QStyledItemDelegate(parent), m_model(model), m_loader(loader) {}

ThumbnailCell::~ThumbnailCell() = default;

QSize ThumbnailCell::pictureArea(int listWidth) const {
    const int width = std::max(listWidth - 2 * sideMargin, leastPictureWidth);
    return {width, static_cast<int>(std::lround(width * m_shape))};
}

int ThumbnailCell::height(int listWidth) const {
    return topMargin + pictureArea(listWidth).height() + numberHeight + bottomMargin;
}

bool ThumbnailCell::makeRoomFor(const QSizeF& page) {
    constexpr double greatestShape =
        static_cast<double>(ThumbnailLoader::usualSize.height()) / ThumbnailLoader::usualSize.width();
    const double shape = page.isEmpty() ? 0 : std::min(page.height() / page.width(), greatestShape);
    constexpr double trace = 0.01; // a picture has whole pixels
    if (shape <= m_shape + trace)
        return false;
    m_shape = shape;
    return true;
}

QSize ThumbnailCell::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    const auto* list = qobject_cast<const QAbstractScrollArea*>(option.widget);
    const int width = list ? list->viewport()->width() : option.rect.width();
    return {width, height(width)};
}

void ThumbnailCell::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool hasFocus = option.state & QStyle::State_HasFocus;
    const bool isHovered = option.state & QStyle::State_MouseOver;
    if (isSelected || hasFocus || isHovered) {
        painter->setPen(hasFocus ? QPen(option.palette.color(QPalette::Highlight), 2) : QPen(Qt::NoPen));
        painter->setBrush(isSelected  ? translucent(Palette::brandBlue, 0.28F)
                          : isHovered ? translucent(option.palette.color(QPalette::WindowText), 0.07F)
                                      : QColor(Qt::transparent));
        painter->drawRoundedRect(QRectF(option.rect).adjusted(6, 2, -6, -2), cornerRadius, cornerRadius);
    }
    paintPicture(*painter, option, index.row());
    paintNumber(*painter, option, index.row());
    painter->restore();
}

void ThumbnailCell::paintPicture(QPainter& painter, const QStyleOptionViewItem& option, int row) const {
    const QSize area = pictureArea(option.rect.width());
    const QRectF frame(option.rect.left() + (option.rect.width() - area.width()) / 2.0, option.rect.top() + topMargin,
                       area.width(), area.height());
    const QImage image = m_loader.picture(row);
    constexpr QSizeF letter(8.5, 11);
    const QSizeF shape = image.isNull() ? letter : QSizeF(image.size());
    QRectF page({}, shape.scaled(frame.size(), Qt::KeepAspectRatio));
    page.moveCenter(frame.center());
    page.moveBottom(frame.bottom());
    // On whole pixels of the screen a picture of that size is shown as it was drawn.
    const qreal ratio = painter.device()->devicePixelRatioF();
    page.moveTopLeft(QPointF((page.topLeft() * ratio).toPoint()) / ratio);
    painter.fillRect(page, Qt::white);
    if (!image.isNull())
        painter.drawImage(page, image);
    const bool isCurrent = row == m_model.currentRow();
    const qreal width = isCurrent ? 2 : 1;
    painter.setPen(
        QPen(isCurrent ? Palette::brandBlue : translucent(option.palette.color(QPalette::WindowText), 0.25F), width));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(page.adjusted(-width / 2, -width / 2, width / 2, width / 2));
}

void ThumbnailCell::paintNumber(QPainter& painter, const QStyleOptionViewItem& option, int row) const {
    const bool isCurrent = row == m_model.currentRow();
    painter.setFont(numberFont(option.font, isCurrent));
    const QString number = QString::number(row + 1);
    QString label = m_model.label(row);
    const QFontMetrics metrics = painter.fontMetrics();
    const QRect line(option.rect.left() + sideMargin, option.rect.bottom() + 1 - bottomMargin - numberHeight,
                     option.rect.width() - 2 * sideMargin, numberHeight);
    const QColor color = option.palette.color(QPalette::WindowText);
    painter.setPen(color);
    if (label.isEmpty()) {
        painter.drawText(line, Qt::AlignCenter, number);
        return;
    }
    // The number in front, the label fainter behind it, both together in the middle.
    const QString front = number + u' ';
    const int frontWidth = metrics.horizontalAdvance(front);
    label = QStringLiteral("(%1)").arg(label);
    label = metrics.elidedText(label, Qt::ElideRight, line.width() - frontWidth);
    const int width = frontWidth + metrics.horizontalAdvance(label);
    const QRect both(line.center().x() - width / 2, line.top(), width + 1, line.height());
    painter.drawText(both, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, front);
    painter.setPen(translucent(color, 0.6F));
    painter.drawText(both.adjusted(frontWidth, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, label);
}
