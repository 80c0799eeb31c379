#pragma once

#include <QTextEdit>

#include <functional>

/// The plain text field in which a message is written: as high as its text, from one line to eight, then it scrolls.
///
/// Of a very long text that is put in at once, beginning and end are shown, and a sign between them stands for the
/// rest: the field couldn't be used any more while it laid out a whole book. The sign is copied, moved and deleted as
/// that text, and goes with the message.
class MessageField : public QTextEdit {
    Q_OBJECT

public:
    static constexpr int mostLines = 8;

    explicit MessageField(QWidget* parent = nullptr);
    ~MessageField() override;

    /// All of it, also what a sign stands for.
    [[nodiscard]] QString message() const;
    /// Does nothing when the field has that text, so the cursor stays.
    void setMessage(const QString& message);

    /// Called for a Return without any modifier; true when it did something. Otherwise, as with a modifier, the field
    /// begins a new line.
    std::function<bool()> onReturn;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void changeEvent(QEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;

private:
    [[nodiscard]] int heightOfLines(int count) const;
    void fitHeight();
    void insert(QTextCursor cursor, const QString& text);
    void insertSign(QTextCursor& cursor, const QString& hidden);
    [[nodiscard]] QString expanded(const QString& shown, int position) const;

    int m_signCount = 0;
};
