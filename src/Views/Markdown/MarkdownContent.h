#pragma once

#include "MathImageSource.h"

#include <QColor>
#include <QString>
#include <QWidget>

class MarkdownBrowser;

/// A reply of the assistant: its Markdown laid out as headings, lists, code, tables and quotes, in one text that can be
/// selected and copied by pointer and keys. It has the height that its width asks for and no ground; the text has the
/// palette's `Text` colour, and light and dark follow the palette.
class MarkdownContent : public QWidget {
    Q_OBJECT

public:
    /// More of a reply isn't laid out; a sentence stands in for the rest. In UTF-16 code units.
    static constexpr qsizetype longestText = 400'000;

    /// `color` is that of the formulas; without `mathImages` each shows as its source. Words that name one of
    /// `pageCount` pages are links.
    MarkdownContent(const QString& text, const QColor& color, const MathImageSource& mathImages = {}, int pageCount = 0,
                    QWidget* parent = nullptr);
    ~MarkdownContent() override;

    [[nodiscard]] const QString& text() const { return m_text; }
    /// Lays out anew. Any text will do, among them one that is still being received.
    void setText(const QString& text);

    [[nodiscard]] const QColor& color() const { return m_color; }
    void setColor(const QColor& color);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// A link to a page was used; the number counts from 1.
    void pageRequested(int page);

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void rebuild(bool keepsSelection);

    QString m_text;
    QColor m_color;
    MathImageSource m_mathImages;
    const int m_pageCount;
    MarkdownBrowser* m_browser;
    double m_ratio = 0; // device pixels in one of the screen that the formulas were drawn for
};
