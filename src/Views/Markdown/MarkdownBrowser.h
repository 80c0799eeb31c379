#pragma once

#include "MarkdownDocument.h"

#include <QHash>
#include <QTextBrowser>

/// Shows the document of a reply at full height, without a ground of its own: what it stands in scrolls. The height
/// follows the width. A table too wide for it can be scrolled sideways, a
/// formula too wide by itself. A link to the web asks before it opens.
class MarkdownBrowser : public QTextBrowser {
    Q_OBJECT

public:
    /// Its links can lead to that many pages.
    MarkdownBrowser(int pageCount, QWidget* parent);
    ~MarkdownBrowser() override;

    /// Shows another document. The selection stays where it was when `keepsSelection` is true.
    void display(MarkdownDocument::Result content, bool keepsSelection);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    /// Lays the document out at that width, once, and keeps it so until another is asked for.
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The height is that of a line: the true one follows from the width.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// A link to a page was used; the number counts from 1.
    void pageRequested(int page);

protected:
    [[nodiscard]] QMimeData* createMimeDataFromSelection() const override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void layOut(int width);
    /// True when the wheel moved a formula that is too wide to be shown as a whole.
    bool scrollFormula(const QWheelEvent& event);
    /// Scrolls what this stands in so that the end of the selection can be seen.
    void followCursor();

    MarkdownDecorations m_decorations;
    int m_width = 0; // that the document is laid out at
    bool m_isLayingOut = false;
    bool m_isPlaced = false;           // the decorations at that width
    mutable QHash<int, int> m_heights; // of the document, by width
};
