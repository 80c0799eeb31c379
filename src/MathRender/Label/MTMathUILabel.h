#pragma once

#include "MTContentLayout.h"
#include "MTParseError.h"

#include <QColor>
#include <QMarginsF>
#include <QSizeF>
#include <QString>
#include <QWidget>

#include <memory>
#include <optional>

class MTFont;
class MTLabel;
class MTMathList;
class MTMathListDisplay;

/// A view that shows a formula, or what is wrong with its source. A point is a pixel of the widget's coordinates. For
/// screen readers the source is its name. Main thread only.
class MTMathUILabel : public QWidget {
    Q_OBJECT

public:
    /// In Latin Modern Math at 20 points, black, left, in display mode and without insets.
    explicit MTMathUILabel(QWidget* parent = nullptr);
    ~MTMathUILabel() override;

    [[nodiscard]] const QString& latex() const { return m_latex; }
    /// Never throws: a source that is no formula leaves no list, and an error.
    void setLatex(const QString& latex);

    /// Null when the latest source was no formula.
    [[nodiscard]] const std::shared_ptr<MTMathList>& mathList() const { return m_mathList; }
    /// Shows `list`; `latex` becomes its source, and there is no error.
    void setMathList(std::shared_ptr<MTMathList> list);

    [[nodiscard]] const std::optional<MTParseError>& error() const { return m_error; }

    /// Whether errors are shown in place of the formula; true at first.
    [[nodiscard]] bool displayErrorInline() const { return m_displayErrorInline; }
    void setDisplayErrorInline(bool displayInline);

    [[nodiscard]] const std::shared_ptr<const MTFont>& mathFont() const { return m_font; }
    /// The label takes over the font's size. Null is ignored.
    void setMathFont(std::shared_ptr<const MTFont> font);
    [[nodiscard]] double fontSize() const { return m_fontSize; }
    void setFontSize(double points);

    [[nodiscard]] const QColor& textColor() const { return m_textColor; }
    /// An invalid colour is ignored.
    void setTextColor(const QColor& color);

    [[nodiscard]] QMarginsF contentInsets() const { return m_content.insets; }
    void setContentInsets(const QMarginsF& insets);
    [[nodiscard]] MTMathUILabelMode labelMode() const { return m_content.mode; }
    void setLabelMode(MTMathUILabelMode mode);
    [[nodiscard]] MTTextAlignment textAlignment() const { return m_content.alignment; }
    void setTextAlignment(MTTextAlignment alignment);

    /// Hidden but for an error that is shown.
    [[nodiscard]] MTLabel& errorLabel() { return *m_errorLabel; }

    /// Lays the formula out in the label's bounds. It is done by itself before the label is drawn.
    void layoutSubviews();
    /// The formula as it was laid out last; null without a list.
    [[nodiscard]] const MTMathListDisplay* displayList() const { return m_displayList.get(); }

    /// What the formula takes with the insets, in points; the empty size without a list.
    [[nodiscard]] QSizeF fittingSize() const { return sizeThatFits({0, 0}); }
    /// As `fittingSize`, but `size` without a list.
    [[nodiscard]] QSizeF sizeThatFits(QSizeF size) const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showError();
    /// After a change of what is shown or how.
    void contentChanged();

    std::shared_ptr<MTMathList> m_mathList;
    QString m_latex;
    std::optional<MTParseError> m_error;
    bool m_displayErrorInline = true;
    std::shared_ptr<const MTFont> m_font;
    double m_fontSize;
    QColor m_textColor{Qt::black};
    MTContentLayout m_content;
    std::unique_ptr<MTMathListDisplay> m_displayList;
    bool m_needsLayout = true;
    MTLabel* m_errorLabel; ///< a child
};
