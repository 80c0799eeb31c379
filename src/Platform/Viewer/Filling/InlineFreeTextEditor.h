#pragma once

#include <QColor>
#include <QTextEdit>

#include <optional>

/// By which sizes of fonts, in points, become pixels of a screen.
inline constexpr double pointsPerInch = 72;

/// A small editor of plain text that lies over a page: a child of the viewer's viewport, with an outline. Undo, the
/// clipboard and the menu work on its own text, and the wheel scrolls the page below. When it ends is for its
/// `PlacedEditor` to say.
///
/// Whoever opens it gives it a font, colours, a place and an accessible name.
class InlineFreeTextEditor : public QTextEdit {
    Q_OBJECT

public:
    explicit InlineFreeTextEditor(QWidget* parent);
    ~InlineFreeTextEditor() override;

    /// The outline's colour, which may be transparent.
    QColor borderColor{0x00, 0x7A, 0xFF};
    /// The text doesn't become longer, in UTF-16 units, whatever is typed or pasted; none for no limit.
    std::optional<int> maximumLength;
    /// Takes only what doesn't make the text higher than the editor.
    bool staysInPlace = false;

    /// `pageFont`, whose size is in points of the page, for a page that is shown at `scale` on the screen of `widget`,
    /// laid out as text on pages is.
    [[nodiscard]] static QFont screenFont(const QFont& pageFont, double scale, const QWidget& widget);
    /// The height of one line of `screenFont`, in device-independent pixels.
    [[nodiscard]] static double defaultLineHeight(const QFont& screenFont, const QWidget& widget);

    /// `paper` may be transparent: the page shows then.
    void setColors(const QColor& text, const QColor& paper);
    /// Puts the editor's edges and those of its text, which lies `inset` within them, on the nearest pixels of the
    /// viewport. A frame too small for the insets and some text gets smaller ones at the sides and below.
    void place(const QRectF& frame, QPointF inset);
    /// The text so far, with what an input method was about to commit; lines are separated by "\n".
    [[nodiscard]] QString finishedText();
    /// The same without what an input method still composes, which goes on.
    [[nodiscard]] QString typedText() const;
    /// Takes what an input method was about to commit into the text.
    void finishComposing();
    /// The height of the text as it is broken into lines now, without insets.
    [[nodiscard]] double usedHeight() const;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    [[nodiscard]] bool isComposing() const;
    void paintFrame();
    [[nodiscard]] QString taken(QString text) const;

    QColor m_paper = Qt::transparent;
};
