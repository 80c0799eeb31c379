#include "TextFlow.h"

#include "LetterPages.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>

namespace {

constexpr qsizetype usualPiece = 4096;
constexpr qsizetype largestPiece = 16 * usualPiece; ///< for lines of characters without a width

bool endsLine(QChar character) {
    switch (character.unicode()) {
    case '\n':
    case '\v':
    case '\f':
    case '\r':
    case 0x85:
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
        return true;
    default:
        return false;
    }
}

/// Eighty characters of a fixed width fit into a line.
QFont fontOfText(QPaintDevice* device) {
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Sans Mono"), QStringLiteral("monospace")});
    font.setStyleHint(QFont::Monospace);
    font.setPointSizeF(10);
    font.setHintingPreference(QFont::PreferNoHinting);
    return {font, device};
}

} // namespace

TextFlow::TextFlow(LetterPages& pages)
    : pages_(pages), font_(fontOfText(pages.device())), blankHeight_(QFontMetricsF(font_).height()),
      pieceLength_(usualPiece) {
    constexpr int columnsOfTab = 8;
    options_.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    options_.setUseDesignMetrics(true); // no widths of a screen's pixels
    options_.setTabStopDistance(columnsOfTab * QFontMetricsF(font_).horizontalAdvance(QLatin1Char(' ')));
}

void TextFlow::add(QStringView text) {
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!endsLine(text[i])) {
            endedByReturn_ = false;
            continue;
        }
        const bool isSecondHalf = text[i] == QLatin1Char('\n') && endedByReturn_;
        endedByReturn_ = text[i] == QLatin1Char('\r');
        if (!isSecondHalf) {
            addToLine(text.mid(start, i - start));
            endLine();
        }
        start = i + 1;
    }
    addToLine(text.mid(start));
}

void TextFlow::end() {
    if (!line_.isEmpty())
        endLine();
}

void TextFlow::addToLine(QStringView text) {
    for (const QChar character : text)
        if (character == QChar::Tabulation || character >= QLatin1Char(' '))
            line_ += character == QChar::ObjectReplacementCharacter ? QChar(QChar::ReplacementCharacter) : character;
    while (line_.size() > pieceLength_)
        layOut(pieceLength_);
}

void TextFlow::endLine() {
    if (line_.isEmpty())
        top_ = placeOf(blankHeight_) + blankHeight_;
    while (!line_.isEmpty())
        layOut(line_.size());
    hasDirection_ = false;
    pieceLength_ = usualPiece;
}

/// Draws the lines that the first `length` characters fill, which are the rest of the file's line or a piece of it. The
/// last line of a piece waits for what comes after it.
void TextFlow::layOut(qsizetype length) {
    if (!hasDirection_) {
        options_.setTextDirection(line_.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        hasDirection_ = true;
    }
    QTextLayout layout(line_.left(length), font_, pages_.device());
    layout.setTextOption(options_);
    layout.setCacheEnabled(true);
    const bool isRest = length == line_.size();
    qsizetype drawn = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(LetterPages::frame.width());
        const qsizetype end = line.textStart() + line.textLength();
        if (end == length && !isRest && (drawn > 0 || pieceLength_ < largestPiece))
            break;
        top_ = placeOf(line.height());
        line.draw(&pages_.painter(), QPointF(0, top_));
        top_ += line.height();
        drawn = end;
    }
    layout.endLayout();
    line_.remove(0, drawn);
    if (drawn == 0) // all of it in one line: more of the text is needed to tell where that ends
        pieceLength_ *= 2;
}

qreal TextFlow::placeOf(qreal height) {
    if (top_ + height <= LetterPages::frame.height())
        return top_;
    pages_.startPage();
    return 0;
}
