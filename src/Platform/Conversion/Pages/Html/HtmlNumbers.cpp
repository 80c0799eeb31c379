#include "HtmlNumbers.h"

#include "HtmlFormats.h"
#include "HtmlLayout.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextList>

#include <optional>

namespace {

// Characters that no text has; Qt's documents mean frames by the first two of these.
constexpr char16_t startOfMarker = 0xFDD2;
constexpr char16_t endOfMarker = 0xFDD3;

std::optional<int> takeMarker(const QTextBlock& block) {
    const QString text = block.text();
    const qsizetype start = text.indexOf(QChar(startOfMarker));
    const qsizetype end = text.indexOf(QChar(endOfMarker), start);
    if (start < 0 || end < 0)
        return std::nullopt;
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + int(start));
    cursor.setPosition(block.position() + int(end) + 1, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    return text.mid(start + 1, end - start - 1).toInt();
}

QString byLetters(int number) {
    QString text;
    for (; number > 0; number = (number - 1) / 26)
        text.prepend(QChar(char16_t(u'a' + (number - 1) % 26)));
    return text;
}

QString byRomanNumerals(int number) {
    static constexpr struct {
        int value;
        const char* numerals;
    } parts[] = {{1000, "m"}, {900, "cm"}, {500, "d"}, {400, "cd"}, {100, "c"}, {90, "xc"}, {50, "l"},
                 {40, "xl"},  {10, "x"},   {9, "ix"},  {5, "v"},    {4, "iv"},  {1, "i"}};
    QString text;
    for (const auto& [value, numerals] : parts)
        for (; number >= value; number -= value)
            text += QLatin1String(numerals);
    return text;
}

QString label(int number, QTextListFormat::Style style) {
    constexpr int largestRoman = 3999;
    switch (style) {
    case QTextListFormat::ListLowerAlpha:
    case QTextListFormat::ListUpperAlpha:
        if (number > 0)
            return style == QTextListFormat::ListLowerAlpha ? byLetters(number) : byLetters(number).toUpper();
        break;
    case QTextListFormat::ListLowerRoman:
    case QTextListFormat::ListUpperRoman:
        if (number > 0 && number <= largestRoman)
            return style == QTextListFormat::ListLowerRoman ? byRomanNumerals(number)
                                                            : byRomanNumerals(number).toUpper();
        break;
    default:
        break;
    }
    return QString::number(number);
}

bool isNumbered(QTextListFormat::Style style) {
    return style <= QTextListFormat::ListDecimal && style >= QTextListFormat::ListUpperRoman;
}

} // namespace

QString HtmlNumbers::marker(int number) {
    return QChar(startOfMarker) + QString::number(number) + QChar(endOfMarker);
}

void HtmlNumbers::prepare(QTextDocument& document) {
    QHash<QTextList*, QHash<int, int>> told; // the numbers of items, by their positions among those of their list
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (const std::optional<int> number = takeMarker(block))
            if (QTextList* list = block.textList())
                told[list][list->itemNumber(block)] = *number;
    for (auto list = told.cbegin(); list != told.cend(); ++list) {
        QTextListFormat format = list.key()->format();
        const QTextListFormat::Style style = format.style();
        if (!isNumbered(style))
            continue;
        int number = 1;
        for (int i = 0; i < list.key()->count(); ++i, ++number) {
            number = list->value(i, number);
            const QTextBlock item = list.key()->item(i);
            QTextBlockFormat ofItem = item.blockFormat();
            ofItem.setProperty(HtmlFormats::labelProperty, label(number, style) + QLatin1Char('.'));
            QTextCursor(item).setBlockFormat(ofItem);
        }
        format.setStyle(QTextListFormat::ListStyleUndefined);
        list.key()->setFormat(format);
    }
}

QHash<int, QList<QTextBlock>> HtmlNumbers::byPage(const QTextDocument& document, qreal pageHeight) {
    QHash<int, QList<QTextBlock>> blocks;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        if (block.blockFormat().hasProperty(HtmlFormats::labelProperty) && block.layout()->lineCount() > 0) {
            const QTextLine line = block.layout()->lineAt(0);
            const qreal baseline = HtmlLayout::originOf(document, block).y() + line.y() + line.ascent();
            blocks[int(baseline / pageHeight)].append(block);
        }
    return blocks;
}

void HtmlNumbers::draw(const QTextDocument& document, const QTextBlock& block, QPainter& painter) {
    const QString text = block.blockFormat().stringProperty(HtmlFormats::labelProperty);
    const QTextLayout& layout = *block.layout();
    if (text.isEmpty() || layout.lineCount() == 0)
        return;
    const QTextLine line = layout.lineAt(0);
    const QTextCharFormat format = QTextCursor(block).charFormat();
    QTextLayout ofNumber(text, QFont(format.font(), painter.device()), painter.device());
    ofNumber.beginLayout();
    const QTextLine number = ofNumber.createLine();
    ofNumber.endLayout();
    const QRectF beside = line.naturalTextRect();
    const qreal space = QFontMetricsF(ofNumber.font(), painter.device()).horizontalAdvance(QLatin1Char(' '));
    const qreal x = block.textDirection() == Qt::RightToLeft ? beside.right() + space
                                                             : beside.left() - space - number.naturalTextWidth();
    painter.setPen(format.foreground().style() == Qt::NoBrush ? Qt::black : format.foreground().color());
    ofNumber.draw(&painter,
                  HtmlLayout::originOf(document, block) + QPointF(x, line.y() + line.ascent() - number.ascent()));
}
