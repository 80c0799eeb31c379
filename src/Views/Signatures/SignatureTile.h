#pragma once

#include <QAbstractButton>
#include <QPixmap>

#include <optional>

class QImage;

/// A card with a signature to choose; the chosen one has a border in the program's blue. A small button in its corner
/// asks to delete it.
class SignatureTile : public QAbstractButton {
    Q_OBJECT

public:
    /// `image` is none for a signature that can't be read: an empty card. `number` counts from 1.
    SignatureTile(const std::optional<QImage>& image, int number, QWidget* parent = nullptr);
    ~SignatureTile() override;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void deleteRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_picture;
};
