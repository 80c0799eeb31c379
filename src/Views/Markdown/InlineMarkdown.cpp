#include "InlineMarkdown.h"

#include "InlineMarkdownParser.h"
#include "MathSegmentSplitter.h"

static InlineRun formulaRun(const MathSegment::Math& math, const QColor& color, const MathImageSource& mathImages) {
    const double size = math.display ? InlineMarkdown::displayMathSize : InlineMarkdown::inlineMathSize;
    QImage image = mathImages ? mathImages(math.latex, size, color) : QImage();
    if (image.isNull())
        return {math.latex, {}, {}, {}};
    const QString delimiter = math.display ? QStringLiteral("$$") : QStringLiteral("$");
    return {delimiter + math.latex + delimiter, {}, {}, std::move(image)};
}

InlineMarkdown::InlineMarkdown(QStringView raw, const QColor& color, const MathImageSource& mathImages) {
    for (const MathSegment& segment : MathSegmentSplitter::split(raw)) {
        if (const auto* math = std::get_if<MathSegment::Math>(&segment.content)) {
            m_text.push_back(formulaRun(*math, color, mathImages));
            continue;
        }
        const QString& words = std::get<MathSegment::Text>(segment.content).text;
        if (auto runs = InlineMarkdownParser::parse(words))
            m_text.insert(m_text.end(), std::make_move_iterator(runs->begin()), std::make_move_iterator(runs->end()));
        else
            m_text.push_back({words, {}, {}, {}});
    }
}
