#pragma once

#include <QRectF>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

/// The text of a field and where it goes in the field's box. The screen and the writer of files set it by the same
/// rules, each with the widths of its own font. Points; the origin is the lower left corner of the box, y up.
struct FieldText {
    enum class Kind { line, wrapped, comb, rows };

    Kind kind = Kind::line;
    QString text;                  ///< of all kinds but rows
    QStringList rows;              ///< of a list box, from the first that shows
    std::vector<qsizetype> chosen; ///< indices into `rows`
    QSizeF box;                    ///< of the widget, before turning
    double border = 1;             ///< what the frame takes at each side
    double size = 12;              ///< 0 chooses one that suits the box
    int alignment = 0;             ///< the Q key: 0 left, 1 centred, 2 right
    int cells = 0;                 ///< of a comb

    struct Line {
        QString text;
        QPointF at; ///< where its baseline starts
    };
    struct Layout {
        double size = 12;
        std::vector<Line> lines;
        std::vector<QRectF> highlights; ///< behind chosen rows
    };
    /// `width` gives the width of a text in parts of the font size.
    using Width = std::function<double(const QString&)>;
    [[nodiscard]] Layout layout(const Width& width) const;

    /// What text is clipped to.
    [[nodiscard]] QRectF clip() const;

private:
    [[nodiscard]] Layout wrappedLayout(const Width& width) const;
    [[nodiscard]] Layout rowLayout() const;
};
