#include "InlineMarkdown.h"

#include "InlineMarkdownParser.h"
#include "MathSegmentSplitter.h"
#include "PageLinks.h"

#include <algorithm>

static InlineRun formulaRun(const MathSegment::Math& math, const QColor& color, const MathImageSource& mathImages) {
    const double size = math.display ? InlineMarkdown::displayMathSize : InlineMarkdown::inlineMathSize;
    QImage image = mathImages ? mathImages(math.latex, size, color) : QImage();
    if (image.isNull())
        return {math.latex, {}, {}, {}};
    const QString delimiter = math.display ? QStringLiteral("$$") : QStringLiteral("$");
    return {delimiter + math.latex + delimiter, {}, {}, std::move(image)};
}

/// The words of the runs, one behind the other, with a stand-in for each letter that can't become a link.
static QString linkableWords(const std::vector<InlineRun>& runs) {
    QString words;
    for (const InlineRun& run : runs) {
        if (run.link.isEmpty() && !run.traits.testFlag(InlineRun::Trait::code))
            words += run.text;
        else
            words.resize(words.size() + run.text.size(), QChar::ObjectReplacementCharacter);
    }
    return words;
}

static std::vector<InlineRun> withPageLinks(std::vector<InlineRun> runs, int pageCount) {
    const std::vector<PageLinks::Mention> mentions = PageLinks::find(linkableWords(runs), pageCount);
    if (mentions.empty())
        return runs;
    std::vector<InlineRun> linked;
    auto mention = mentions.begin();
    qsizetype runStart = 0;
    for (const InlineRun& run : runs) {
        const qsizetype runEnd = runStart + run.text.size();
        qsizetype position = runStart;
        const auto take = [&](qsizetype end, const QString& link) {
            if (end > position)
                linked.push_back({run.text.sliced(position - runStart, end - position), run.traits, link, {}});
            position = std::max(position, end);
        };
        for (; mention != mentions.end() && mention->start < runEnd; ++mention) {
            take(mention->start, run.link);
            take(std::min(mention->end, runEnd), PageLinks::address(mention->page));
            if (mention->end > runEnd)
                break; // "page **3**"
        }
        take(runEnd, run.link);
        runStart = runEnd;
    }
    return linked;
}

InlineMarkdown::InlineMarkdown(QStringView raw, const QColor& color, const MathImageSource& mathImages, int pageCount) {
    for (const MathSegment& segment : MathSegmentSplitter::split(raw)) {
        if (const auto* math = std::get_if<MathSegment::Math>(&segment.content)) {
            m_text.push_back(formulaRun(*math, color, mathImages));
            continue;
        }
        const QString& words = std::get<MathSegment::Text>(segment.content).text;
        if (auto runs = InlineMarkdownParser::parse(words)) {
            runs = withPageLinks(*std::move(runs), pageCount);
            m_text.insert(m_text.end(), std::make_move_iterator(runs->begin()), std::make_move_iterator(runs->end()));
        } else {
            m_text.push_back({words, {}, {}, {}});
        }
    }
}
