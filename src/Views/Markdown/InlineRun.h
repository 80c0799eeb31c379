#pragma once

#include <QFlags>
#include <QImage>
#include <QString>

/// A stretch of text in one style, or a formula.
struct InlineRun {
    enum class Trait { strong = 1, emphasis = 2, code = 4, strikethrough = 8 };
    Q_DECLARE_FLAGS(Traits, Trait)

    QString text; ///< of a formula with an image: its source with delimiters, which is what a copy holds
    Traits traits;
    QString link; ///< the address as it was written; empty for none
    QImage image; ///< of a formula; null where the text itself is shown
};

Q_DECLARE_OPERATORS_FOR_FLAGS(InlineRun::Traits)
