#pragma once

#include <QFrame>

class ElidedLabel;

/// The name of the file that goes with the next message, and a button that takes it away.
class AttachmentChip : public QFrame {
    Q_OBJECT

public:
    explicit AttachmentChip(QWidget* parent = nullptr);
    ~AttachmentChip() override;

    /// A long name is shortened in its middle. While the file is still being read, it says so.
    void setName(const QString& name, bool isBeingRead);

Q_SIGNALS:
    void removeRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ElidedLabel* m_name;
};
