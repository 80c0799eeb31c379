#pragma once

#include <QWidget>

class QButtonGroup;

/// A choice of one of a few, all in view.
class SegmentedChoice : public QWidget {
    Q_OBJECT

public:
    SegmentedChoice(const QString& name, const QString& helpText, const QStringList& titles, QWidget* parent = nullptr);
    ~SegmentedChoice() override;

    [[nodiscard]] int current() const;
    /// Shows a choice, without a signal.
    void setCurrent(int index);

Q_SIGNALS:
    /// The user has chosen.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup* m_buttons;
};
