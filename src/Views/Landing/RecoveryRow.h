#pragma once

#include "LostDocument.h"

#include <QFrame>

class QLabel;
class QPushButton;

/// One lost document of the recovery window: its picture, what is known of it, and what can be done with it.
class RecoveryRow : public QFrame {
    Q_OBJECT

public:
    /// `now` is what the time of the document is told against.
    RecoveryRow(const LostDocument& document, const QDateTime& now, QWidget* parent = nullptr);
    ~RecoveryRow() override;

    [[nodiscard]] const LostDocument& document() const { return m_document; }

    /// True while it is being recovered: nothing can be done with it then.
    [[nodiscard]] bool isBusy() const { return m_isBusy; }
    void setBusy(bool busy);

    /// It can't be recovered, as `sentence` says; it can be deleted.
    void setFailure(const QString& sentence);
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }

Q_SIGNALS:
    void recoverRequested();
    void deleteRequested();

protected:
    void changeEvent(QEvent* event) override;

private:
    QWidget* makeTexts(const QDateTime& now);
    void makeNotice();
    void setNotice(const QString& text);
    void showPicture();
    void updateButtons();

    const LostDocument m_document;
    QLabel* m_picture;
    QWidget* m_notice;
    QLabel* m_noticeText;
    QPushButton* m_recover;
    QPushButton* m_delete;
    bool m_isBusy = false;
    bool m_hasFailed = false;
};
