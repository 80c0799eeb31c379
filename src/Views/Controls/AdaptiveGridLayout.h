#pragma once

#include <QLayout>

#include <vector>

/// A grid with as many columns of equal width as fit, each at least `minimumCellWidth` wide; its height follows from
/// its width.
class AdaptiveGridLayout : public QLayout {
public:
    AdaptiveGridLayout(int minimumCellWidth, int spacing);
    ~AdaptiveGridLayout() override;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    [[nodiscard]] int columns(int width) const;
    [[nodiscard]] int cellHeight() const;

    int m_minimumCellWidth;
    std::vector<QLayoutItem*> m_items; // owned
};
