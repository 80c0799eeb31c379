#pragma once

#include <QAbstractButton>

/// One saved conversation in a list: its title, when it was last continued, and a button to delete it.
class ChatHistoryRow : public QAbstractButton {
    Q_OBJECT

public:
    /// Checked is the conversation that shows now.
    ChatHistoryRow(const QString& title, const QString& time, bool isCurrent, QWidget* parent = nullptr);
    ~ChatHistoryRow() override;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void deleteRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QString m_time;
    QWidget* m_deleteButton;
};
