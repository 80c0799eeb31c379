#include "PlainText.h"

#include <algorithm>

namespace {

constexpr qsizetype longestLine = 500; // a file's name has 255 bytes at most
constexpr qsizetype longestName = 80;
constexpr qsizetype longestParagraphs = 3000;
constexpr int longestWord = 60; // that fits into a line of a dialog
constexpr char16_t zeroWidthSpace = 0x200B;

bool joinsPrevious(QChar character) {
    return character.isLowSurrogate() || character.isMark();
}

qsizetype characterStart(const QString& words, qsizetype start) {
    while (start < words.size() && joinsPrevious(words[start]))
        ++start;
    return start;
}

/// Up to about `most` units, one more where there are more; `keepsLines` also makes room to break long words.
QString cleaned(const QString& words, qsizetype most, bool keepsLines) {
    const qsizetype seen = std::min(words.size(), 4 * most); // also of what is all hidden
    QString result;
    int marks = 0;
    int unbroken = 0;
    for (qsizetype i = 0; i < seen && result.size() <= most; ++i) {
        const QChar character = words[i];
        const bool endsLine =
            character == u'\n' || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        marks = character.isMark() ? marks + 1 : 0;
        if (marks > PlainText::mostMarks || (PlainText::isHidden(character) && character != u'\r'))
            continue;
        if (keepsLines && unbroken >= longestWord && !joinsPrevious(character)) {
            result += QChar(zeroWidthSpace);
            unbroken = 0;
        }
        unbroken = character.isSpace() || endsLine ? 0 : unbroken + 1;
        if (endsLine || character == u'\r' || character == u'\t')
            result += keepsLines && endsLine ? u'\n' : u' ';
        else
            result += character;
    }
    return seen < words.size() && result.size() <= most ? result + u'…' : result;
}

} // namespace

bool PlainText::isHidden(QChar character) {
    const char16_t code = character.unicode();
    const bool turnsDirection = (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
    return turnsDirection || (character.category() == QChar::Other_Control && code != u'\t' && code != u'\n');
}

qsizetype PlainText::characterEnd(const QString& words, qsizetype end) {
    while (end > 0 && end < words.size() && joinsPrevious(words[end]))
        --end;
    return end;
}

QString PlainText::shortened(const QString& words, qsizetype most) {
    return words.size() <= most ? words : words.left(characterEnd(words, most - 1)) + u'…';
}

QString PlainText::line(const QString& words) {
    return shortened(cleaned(words, longestLine, false), longestLine);
}

QString PlainText::name(const QString& words) {
    QString all = line(words);
    if (all.size() <= longestName)
        return all;
    return all.left(characterEnd(all, longestName / 2)) + u'…' +
           all.mid(characterStart(all, all.size() - longestName / 2 + 1));
}

QString PlainText::paragraphs(const QString& words) {
    return shortened(cleaned(words, longestParagraphs, true), longestParagraphs);
}

QString PlainText::toolTip(const QString& words) {
    QString text = paragraphs(words);
    if (!text.contains(u'<') && !text.contains(QLatin1String("&lt;"))) // what a tool tip takes for a sign of markup
        return text;
    QString escaped = text.toHtmlEscaped();
    escaped.replace(u'\n', QStringLiteral("<br>"));
    return QStringLiteral("<qt>%1</qt>").arg(escaped);
}

QString PlainText::withoutMnemonics(const QString& words) {
    return name(words).replace(u'&', QStringLiteral("&&"));
}

QString PlainText::windowTitle(const QString& words) {
    return line(words).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
}
