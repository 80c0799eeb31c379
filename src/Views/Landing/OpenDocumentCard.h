#pragma once

#include <QFrame>

class QPushButton;

/// The card with a dashed outline on which the user chooses or drops a file. It shows what hovers; the drop itself is
/// taken by the view around it, so that a file that misses the card is not lost.
class OpenDocumentCard : public QFrame {
    Q_OBJECT

public:
    explicit OpenDocumentCard(QWidget* parent = nullptr);
    ~OpenDocumentCard() override;

    /// Whether a file that could be dropped hovers.
    [[nodiscard]] bool isDropTargeted() const { return m_isDropTargeted; }
    void setDropTargeted(bool targeted);

    [[nodiscard]] QPushButton* selectButton() const { return m_selectButton; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPushButton* m_selectButton;
    bool m_isDropTargeted = false;
};
