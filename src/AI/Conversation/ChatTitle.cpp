#include "ChatTitle.h"

#include "GraphemeClusters.h"

QString ChatTitle::fromFirstMessage(const QString& message) {
    constexpr qsizetype limit = 42;
    QString line = message.trimmed().replace(u'\n', u' ');
    const qsizetype end = GraphemeClusters::endOfFirst(line, limit);
    if (end == line.size())
        return line;
    const QString start = line.left(end);
    const qsizetype lastBlank = start.lastIndexOf(u' ');
    return (lastBlank < 0 ? start : start.left(lastBlank)) + u'…';
}

QString ChatTitle::prompt(const QString& firstMessage) {
    return QStringLiteral("Write a short chat title (3 to 6 words, no quotes, no trailing punctuation) summarizing "
                          "this message:\n\n") +
           firstMessage;
}

QString ChatTitle::systemPrompt() {
    return QStringLiteral("You write short, punchy chat titles and respond with the title only.");
}
