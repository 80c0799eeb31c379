#pragma once

#include <QTimer>
#include <QWidget>

class QVariantAnimation;

/// Three dots that swell in turn: a reply is on its way. It moves only while it is visible.
class TypingIndicator : public QWidget {
    Q_OBJECT

public:
    explicit TypingIndicator(QWidget* parent = nullptr);
    ~TypingIndicator() override;

    /// The dot that is, or becomes, the large one: 0 to 2.
    [[nodiscard]] int phase() const { return m_phase; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void advance();

    int m_phase = 0;
    int m_formerPhase = 0;
    QTimer m_timer;
    QVariantAnimation* m_change;
};
