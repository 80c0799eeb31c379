#pragma once

#include <QAbstractSpinBox>

/// A small field for a size in points, with arrows. It takes what was typed on Return and when it loses the focus: a
/// number above 0 is moved into the range, anything else gives way to the value before, and so it does on Escape.
class PointSizeField : public QAbstractSpinBox {
    Q_OBJECT

public:
    struct Range {
        double minimum;
        double maximum;
        double step; ///< of the arrows
    };

    /// `name` is also the help text.
    PointSizeField(const Range& range, const QString& name, QWidget* parent = nullptr);
    ~PointSizeField() override;

    [[nodiscard]] double value() const { return m_value; }
    /// Shows a value, also one outside of the range.
    void setValue(double value);

    /// A small picture before the number.
    void setSymbol(const QString& symbolName);

    /// With one decimal if there is a fractional part, otherwise without any.
    [[nodiscard]] static QString format(double value);

    void stepBy(int steps) override;

Q_SIGNALS:
    /// The user has chosen a value; always in the range.
    void committed(double value);

protected:
    [[nodiscard]] StepEnabled stepEnabled() const override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] bool isEdited() const;
    void commit();
    void take(double value);

    Range m_range;
    double m_value;
};
