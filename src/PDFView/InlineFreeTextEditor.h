#pragma once

#include "Palette.h"

#include <QTextEdit>

#include <functional>

/// A small editor of plain text that lies over a page: a child of the viewer's viewport, with an outline. Return
/// commits, Shift+Return breaks the line, Escape cancels. Undo, the clipboard and the menu work on its own text, and
/// the wheel scrolls the page below. While an input method composes, Return and Escape end the composition only.
///
/// Whoever opens it gives it a font, colours, a place and an accessible name.
class InlineFreeTextEditor : public QTextEdit {
    Q_OBJECT

public:
    explicit InlineFreeTextEditor(QWidget* parent);
    ~InlineFreeTextEditor() override;

    /// Escape; without it Escape does what it does in any text field.
    std::function<void()> onCancel;
    /// Return; without it Return does nothing.
    std::function<void()> onCommit;
    QColor borderColor = Palette::systemBlue;

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
    /// The height of the text as it is broken into lines now, without insets.
    [[nodiscard]] double usedHeight() const;
    /// Emits `editingEnded`, as when the keyboard goes elsewhere.
    void endEditing();

Q_SIGNALS:
    /// The keyboard went to another widget of the window. A menu that pops up, the menu bar and another window only
    /// borrow it: the person comes back to a text that is still being edited.
    void editingEnded();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    [[nodiscard]] bool isComposing() const;
    void paintFrame();

    QColor m_paper = Qt::transparent;
};
