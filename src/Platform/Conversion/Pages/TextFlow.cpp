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
    : m_pages(pages), m_shaped(pages, false), m_font(fontOfText(pages.device())),
      m_blankHeight(QFontMetricsF(m_font).height()), m_pieceLength(usualPiece) {
    constexpr int columnsOfTab = 8;
    m_options.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    m_options.setUseDesignMetrics(true); // no widths of a screen's pixels
    m_options.setTabStopDistance(columnsOfTab * QFontMetricsF(m_font).horizontalAdvance(QLatin1Char(' ')));
}

void TextFlow::add(QStringView text) {
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!endsLine(text[i])) {
            m_endedByReturn = false;
            continue;
        }
        const bool isSecondHalf = text[i] == QLatin1Char('\n') && m_endedByReturn;
        m_endedByReturn = text[i] == QLatin1Char('\r');
        if (!isSecondHalf) {
            addToLine(text.mid(start, i - start));
            endLine();
        }
        start = i + 1;
    }
    addToLine(text.mid(start));
}

void TextFlow::end() {
    if (!m_line.isEmpty())
        endLine();
}

void TextFlow::addToLine(QStringView text) {
    for (const QChar character : text)
        if (character == QChar::Tabulation || character >= QLatin1Char(' '))
            m_line += character == QChar::ObjectReplacementCharacter ? QChar(QChar::ReplacementCharacter) : character;
    while (m_line.size() > m_pieceLength)
        layOut(m_pieceLength);
}

void TextFlow::endLine() {
    if (m_line.isEmpty())
        m_top = placeOf(m_blankHeight) + m_blankHeight;
    while (!m_line.isEmpty())
        layOut(m_line.size());
    m_hasDirection = false;
    m_pieceLength = usualPiece;
}

/// Draws the lines that the first `length` characters fill, which are the rest of the file's line or a piece of it. The
/// last line of a piece waits for what comes after it.
void TextFlow::layOut(qsizetype length) {
    if (!m_hasDirection) {
        m_options.setTextDirection(m_line.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        m_hasDirection = true;
    }
    QTextLayout layout(m_line.left(length), m_font, m_pages.device());
    layout.setTextOption(m_options);
    layout.setCacheEnabled(true);
    const bool isRest = length == m_line.size();
    qsizetype drawn = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(LetterPages::frame.width());
        const qsizetype end = line.textStart() + line.textLength();
        if (end == length && !isRest && (drawn > 0 || m_pieceLength < largestPiece))
            break;
        m_top = placeOf(line.height());
        line.draw(&m_pages.painter(), QPointF(0, m_top));
        m_shaped.add(layout, line, m_line, {m_pages.pageCount() - 1, QPointF(0, m_top)});
        m_top += line.height();
        drawn = end;
    }
    layout.endLayout();
    m_line.remove(0, drawn);
    if (drawn == 0) // all of it in one line: more of the text is needed to tell where that ends
        m_pieceLength *= 2;
}

qreal TextFlow::placeOf(qreal height) {
    if (m_top + height <= LetterPages::frame.height())
        return m_top;
    m_pages.startPage();
    return 0;
}
