#pragma once

#include <QStyledItemDelegate>

class ThumbnailLoader;
class ThumbnailModel;

/// How a page looks in the list: its picture, and its number with its label beneath. Sizes in device-independent
/// pixels.
class ThumbnailCell : public QStyledItemDelegate {
    Q_OBJECT

public:
    ThumbnailCell(const ThumbnailModel& model, ThumbnailLoader& loader, QObject* parent = nullptr);
    ~ThumbnailCell() override;

    /// What a page's picture fits into, in a list of that width: as high as the pages that have been seen need it, but
    /// no higher than a tall page.
    [[nodiscard]] QSize pictureArea(int listWidth) const;
    /// Of one cell in a list of that width.
    [[nodiscard]] int height(int listWidth) const;
    /// Takes note of a page's size, in any unit; true when cells become higher by it.
    bool makeRoomFor(const QSizeF& page);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    /// For pages that are wider than high.
    static constexpr double leastShape = 0.55;

    void paintPicture(QPainter& painter, const QStyleOptionViewItem& option, int row) const;
    void paintNumber(QPainter& painter, const QStyleOptionViewItem& option, int row) const;

    double m_shape = leastShape; ///< of the area: its height for a width of 1
    const ThumbnailModel& m_model;
    ThumbnailLoader& m_loader;
};
