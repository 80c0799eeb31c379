#pragma once

#include <QLayout>

#include <memory>
#include <vector>

/// Lays the groups of a toolbar out in one row, or, where they don't fit, in two: the second half of the groups then
/// begins the second row. Where even that is too wide, each row takes what fits, and the right side has rows of its
/// own. The right side stands at the end of its rows.
class ToolbarLayout : public QLayout {
    Q_OBJECT

public:
    enum class Placement {
        follows,         ///< after the group before
        beginsHalf,      ///< the second half begins here
        beginsRightSide, ///< this group and all after it stand at the end of their row
    };

    explicit ToolbarLayout(QWidget* parent);
    ~ToolbarLayout() override;

    /// The layout's widget becomes the parent of `group`.
    void addGroup(QWidget* group, Placement placement = Placement::follows);

    /// The middles of the gaps between neighbours, where a line may be drawn.
    [[nodiscard]] const std::vector<QLine>& separators() const { return m_separators; }

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override;
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    void setGeometry(const QRect& rect) override;

private:
    struct Entry {
        std::unique_ptr<QLayoutItem> item;
        Placement placement;
    };
    /// Entries from `first` up to `end`, which is not part of it.
    struct Row {
        std::size_t first;
        std::size_t end;
        int height;
    };

    /// The number of entries when none has that placement.
    [[nodiscard]] std::size_t firstOf(Placement placement) const;
    [[nodiscard]] int widthOf(std::size_t first, std::size_t end) const;
    [[nodiscard]] std::vector<Row> rows(int width) const;
    void addRows(std::vector<Row>& rows, std::size_t first, std::size_t end, int width) const;
    void placeRow(const Row& row, const QRect& rect);

    std::vector<Entry> m_entries;
    std::vector<QLine> m_separators;
};
