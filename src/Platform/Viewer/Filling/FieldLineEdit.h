#pragma once

#include <QLineEdit>

/// One line of text over a form field, its paper and insets included. With cells each character stands in the middle of
/// one of equal width, as on paper forms; with choices there is an arrow at the right. Whoever opens it gives it a
/// font, colours and a place.
class FieldLineEdit : public QLineEdit {
    Q_OBJECT

public:
    explicit FieldLineEdit(QWidget* parent);
    ~FieldLineEdit() override;

    void setColors(const QColor& text, const QColor& paper);
    /// The number of cells; 0 for a plain line. Text in cells starts at the left.
    void setCells(int count);
    /// Whether there is a list to choose from.
    void setOffersChoices(bool offers);
    /// Free space at both sides, and how far the text stands above the middle; device-independent pixels.
    void setPlacement(double inset, double lift);
    /// Takes no more than what fits into the width; what is too long for it isn't taken at all.
    void setFitsWidth(bool fits);
    /// Puts the cursor next to the character that is nearest to a point of this widget.
    void setCursorAt(QPointF point);

    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    /// By the arrow, or by Down, which means nothing in a line.
    void choicesRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    [[nodiscard]] double cellWidth() const;
    [[nodiscard]] int gapAt(QPointF point) const;
    void paintCells(QPainter& painter) const;
    [[nodiscard]] bool isOnArrow(QPointF point) const;
    void updateMargins();

    int m_cells = 0;
    bool m_offersChoices = false;
    bool m_isArrowPressed = false;
    double m_inset = 0;
    double m_lift = 0;
    int m_anchor = 0; // where a selection in cells began
};
