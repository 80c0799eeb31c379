#pragma once

#include <QLineEdit>

/// The field that tells the current page, "3 of 12". Typing another number and Return, or leaving the field, goes to
/// that page; anything that is no page of the document is taken back.
class PageField : public QLineEdit {
    Q_OBJECT

public:
    explicit PageField(QWidget* parent = nullptr);
    ~PageField() override;

    void setIndicator(const QString& indicator);
    void setPageCount(int pageCount);

Q_SIGNALS:
    /// Zero-based, always a page of the document.
    void pageChosen(int pageIndex);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void commit();

    QString m_indicator;
    int m_pageCount = 0;
    bool m_selectOnRelease = false;
};
