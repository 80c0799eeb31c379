#include "DisplayText.h"

#include "PlainText.h"

/// U+FFFC stands for objects, and U+FDD0 and those behind it for frames and tables.
static bool isSignOfTheEngine(QChar character) {
    const char16_t code = character.unicode();
    return code == QChar::ObjectReplacementCharacter || (code >= 0xFDD0 && code <= 0xFDEF) || code >= 0xFFFE;
}

static bool allowsBreak(QChar character) {
    const char16_t code = character.unicode();
    const bool keepsTogether = code == QChar::Nbsp || code == 0x2007 || code == 0x202F;
    return character.isSpace() && !keepsTogether;
}

static bool joinsPrevious(QChar character) {
    return character.isLowSurrogate() || character.isMark();
}

QString DisplayText::cleaned(const QString& text) {
    QString result;
    result.reserve(text.size());
    int marks = 0;
    for (const QChar character : text) {
        marks = character.isMark() ? marks + 1 : 0;
        if (marks > PlainText::mostMarks)
            continue;
        if (character == u'\n')
            result.append(QChar::LineSeparator);
        else if (character == QChar::LineSeparator || character == QChar::ParagraphSeparator)
            result.append(u' ');
        else if (isSignOfTheEngine(character))
            result.append(QChar::ReplacementCharacter);
        else if (!PlainText::isHidden(character))
            result.append(character);
    }
    return result;
}

QStringList DisplayText::WordBreaker::pieces(const QString& text) {
    QStringList result;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (m_unbroken >= longestUnbroken && !joinsPrevious(text[i])) {
            result.append(text.sliced(start, i - start));
            start = i;
            m_unbroken = 0;
        }
        m_unbroken = allowsBreak(text[i]) ? 0 : m_unbroken + 1;
    }
    result.append(text.sliced(start));
    return result;
}
