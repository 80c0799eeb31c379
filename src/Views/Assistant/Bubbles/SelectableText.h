#pragma once

#include <QTextEdit>

/// Plain text that can be selected and copied, with pointer and keyboard, and can't be changed. It is as high as the
/// text at its width needs and never scrolls by itself. Its letters are those of replies.
///
/// Of a very long text only the beginning is shown, which ends with "…"; what is copied up to that sign goes on to the
/// end of the text.
class SelectableText : public QTextEdit {
    Q_OBJECT

public:
    static constexpr qsizetype mostShown = 6'000; ///< in code units
    static constexpr int mostLines = 1'000;

    explicit SelectableText(const QString& text, QWidget* parent = nullptr);
    ~SelectableText() override;

    void setTextColor(const QColor& color);

    /// The width at which no line has to be broken, unless that is wider than any panel.
    [[nodiscard]] int naturalWidth() const;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    [[nodiscard]] bool isCut() const { return m_shown.size() < m_text.size(); }
    void write();
    [[nodiscard]] QString selectedText() const;

    const QString m_text; ///< all of it
    const QString m_shown;
};
