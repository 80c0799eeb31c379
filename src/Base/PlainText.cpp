#include "PlainText.h"

QString PlainText::toolTip(const QString& words) {
    if (!words.contains(u'<') && !words.contains(QLatin1String("&lt;"))) // what a tool tip takes for a sign of markup
        return words;
    QString escaped = words.toHtmlEscaped();
    escaped.replace(u'\n', QStringLiteral("<br>"));
    return QStringLiteral("<qt>%1</qt>").arg(escaped);
}

QString PlainText::withoutMnemonics(const QString& words) {
    return QString(words).replace(u'&', QStringLiteral("&&"));
}
