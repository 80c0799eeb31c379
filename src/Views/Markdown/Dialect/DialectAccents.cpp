#include "DialectAccents.h"

#include <QString>

static QStringView commandOf(QChar mark) {
    switch (mark.unicode()) {
    case 0x0300:
        return u"grave";
    case 0x0301:
        return u"acute";
    case 0x0302:
        return u"hat";
    case 0x0303:
        return u"tilde";
    case 0x0304:
        return u"bar";
    case 0x0305:
        return u"overline";
    case 0x0306:
        return u"breve";
    case 0x0307:
        return u"dot";
    case 0x0308:
        return u"ddot";
    case 0x030C:
        return u"check";
    case 0x0332:
        return u"underline";
    case 0x20D7:
        return u"vec";
    default:
        return {};
    }
}

QString DialectAccents::accented(const QString& latex, QStringView marks) {
    constexpr qsizetype mostMarks = 4;
    QString result = latex;
    for (const QChar mark : marks) {
        const QStringView command = commandOf(mark);
        if (command.isEmpty() || marks.size() > mostMarks)
            return {};
        result = u'\\' + command.toString() + u'{' + result + u'}';
    }
    return result;
}

QString DialectAccents::decomposed(char32_t character) {
    const QString parts = QString::fromUcs4(&character, 1).normalized(QString::NormalizationForm_D);
    return parts.size() > 1 && parts.front().unicode() < 0x80 ? parts : QString();
}
