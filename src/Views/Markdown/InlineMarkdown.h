#pragma once

#include "InlineRun.h"
#include "MathImageSource.h"

#include <vector>

/// A text of a reply with its inline marks and formulas read, once, when it is made. A mark that opens before a formula
/// and closes behind it marks nothing: what stands between formulas is read for itself. What can't be read is plain
/// text. Where the words, but no code, formula or link, name one of the document's pages they become a link to it.
class InlineMarkdown {
public:
    /// Size of the letters of formulas, in points.
    static constexpr double inlineMathSize = 15;
    static constexpr double displayMathSize = 17;

    /// `color` is that of the formulas alone; `pageCount` is 0 where there are no pages to go to.
    InlineMarkdown(QStringView raw, const QColor& color, const MathImageSource& mathImages = {}, int pageCount = 0);

    [[nodiscard]] const std::vector<InlineRun>& text() const { return m_text; }

private:
    std::vector<InlineRun> m_text;
};
