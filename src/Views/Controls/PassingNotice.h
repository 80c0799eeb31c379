#pragma once

#include <QTimer>
#include <QWidget>

#include <chrono>

class QLabel;
class QPropertyAnimation;

/// A short message that lies over the top of another widget, fades away by itself and lets clicks through. A newer
/// message takes the place of an older one without a flicker and stays for its own full time.
class PassingNotice : public QWidget {
    Q_OBJECT
    Q_PROPERTY(qreal opacity READ opacity WRITE setOpacity)

public:
    static constexpr std::chrono::milliseconds usualTime{1400};

    /// A child of `covered`, in the middle of its upper edge.
    explicit PassingNotice(QWidget* covered);
    ~PassingNotice() override;

    void announce(const QString& message, std::chrono::milliseconds time = usualTime);

    /// Empty once the time of the last message is over.
    [[nodiscard]] QString message() const;

    [[nodiscard]] qreal opacity() const { return m_opacity; }
    void setOpacity(qreal opacity);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    void fadeTo(qreal opacity, std::chrono::milliseconds duration);

    QLabel* m_label;
    QTimer m_dismissTimer;
    QPropertyAnimation* m_fade;
    qreal m_opacity = 0.0;
};
