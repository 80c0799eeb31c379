#include "RemarkText.h"

#include "PlainText.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace {

constexpr double toolTipWidth = 380; // device-independent pixels
constexpr int mostLines = 12;
constexpr qsizetype longestToolTip = 2000; // characters
constexpr qsizetype longestDescription = 300;
constexpr double answerIndent = 12; // device-independent pixels

/// Tool tips don't break lines of plain text by themselves.
QString brokenIntoLines(const QString& text, const QFont& font) {
    QString cut = text.left(longestToolTip);
    cut.replace(u'\n', QChar::LineSeparator);
    QTextLayout layout(cut, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    bool isCut = text.size() > longestToolTip;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(toolTipWidth);
        if (lines.size() == mostLines) {
            isCut = true;
            break;
        }
        lines.append(cut.mid(line.textStart(), line.textLength()).remove(QChar::LineSeparator).trimmed());
    }
    layout.endLayout();
    if (isCut && !lines.isEmpty())
        lines.last() += u'…';
    return lines.join(u'\n');
}

} // namespace

QString RemarkText::heading(const Remark& remark) {
    const QString date =
        remark.date.isValid() ? QLocale().toString(remark.date.toLocalTime(), QLocale::ShortFormat) : QString();
    return remark.author.isEmpty() || date.isEmpty() ? remark.author + date
                                                     : QStringLiteral("%1, %2").arg(remark.author, date);
}

QString RemarkText::toolTip(const std::vector<Remark>& thread, const QFont& font) {
    const Remark& first = thread.front();
    QStringList parts;
    if (!heading(first).isEmpty())
        parts.append(brokenIntoLines(heading(first), font));
    if (!first.words.isEmpty())
        parts.append(brokenIntoLines(first.words, font));
    const int answers = int(thread.size()) - 1;
    if (answers > 0)
        parts.append(answers == 1 ? QCoreApplication::translate("PDFView", "1 reply")
                                  : QCoreApplication::translate("PDFView", "%1 replies").arg(answers));
    return PlainText::toolTip(parts.join(u'\n'));
}

QString RemarkText::description(const Remark& remark) {
    const QString words = remark.words.left(2 * longestDescription).simplified();
    const QString text = heading(remark).isEmpty() ? words : heading(remark) + QStringLiteral(": ") + words;
    return text.size() > longestDescription ? text.left(longestDescription) + u'…' : text;
}

void RemarkText::write(const std::vector<Remark>& thread, QTextDocument& document) {
    document.clear();
    QTextCursor cursor(&document);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::DemiBold);
    for (std::size_t i = 0; i < thread.size(); ++i) {
        QTextBlockFormat block;
        block.setLeftMargin(i == 0 ? 0 : answerIndent);
        block.setTopMargin(i == 0 ? 0 : answerIndent / 2);
        if (const QString who = heading(thread[i]); !who.isEmpty()) {
            i == 0 ? cursor.setBlockFormat(block) : cursor.insertBlock(block);
            cursor.insertText(who, bold);
            block.setTopMargin(2);
            cursor.insertBlock(block, QTextCharFormat());
        } else if (i > 0) {
            cursor.insertBlock(block, QTextCharFormat());
        }
        cursor.insertText(thread[i].words, QTextCharFormat());
    }
}
