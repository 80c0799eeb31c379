#include "HtmlFormats.h"

#include <QColor>
#include <QStringList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextFrame>
#include <QTextTable>

#include <vector>

namespace {

struct Change {
    int position;
    int length;
    QTextCharFormat format;
};

/// Whether a colour can be read on white paper.
bool isReadable(const QColor& color) {
    constexpr double lightest = 0.8; // of white
    return 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF() < lightest;
}

bool hasBackground(const QTextFormat& format) {
    return format.background().style() != Qt::NoBrush;
}

/// Whether a block keeps a background of its own: a cell of a table, or a frame that isn't the page.
bool standsOnBackground(const QTextDocument& document, const QTextBlock& block) {
    const QTextCursor cursor(block);
    if (const QTextTable* table = cursor.currentTable())
        if (hasBackground(table->format()) || hasBackground(table->cellAt(cursor).format()))
            return true;
    for (const QTextFrame* frame = cursor.currentFrame(); frame && frame != document.rootFrame();
         frame = frame->parentFrame())
        if (hasBackground(frame->frameFormat()))
            return true;
    return false;
}

QTextCharFormat onPaper(QTextCharFormat format, bool isOnBackground) {
    format.clearBackground();
    if (!isOnBackground && format.foreground().style() != Qt::NoBrush && !isReadable(format.foreground().color()))
        format.setForeground(Qt::black);
    const QString address = format.anchorHref();
    if (!address.isEmpty())
        format.setProperty(HtmlFormats::linkProperty, address);
    if (const QStringList names = format.anchorNames(); !names.isEmpty())
        format.setProperty(HtmlFormats::namesProperty, names);
    for (const int property : {QTextFormat::IsAnchor, QTextFormat::AnchorHref, QTextFormat::AnchorName})
        format.clearProperty(property);
    return format;
}

} // namespace

QString HtmlFormats::defaultStyles() {
    return QStringLiteral("a:link { color: #0000ee; text-decoration: underline }");
}

void HtmlFormats::prepare(QTextDocument& document) {
    QTextFrameFormat page = document.rootFrame()->frameFormat();
    page.clearBackground();
    document.rootFrame()->setFrameFormat(page);
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const bool isOnBackground = standsOnBackground(document, block);
        std::vector<Change> changes;
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat old = fragment.fragment().charFormat();
            if (const QTextCharFormat format = onPaper(old, isOnBackground); format != old)
                changes.push_back({fragment.fragment().position(), fragment.fragment().length(), format});
        }
        for (const Change& change : changes) {
            cursor.setPosition(change.position);
            cursor.setPosition(change.position + change.length, QTextCursor::KeepAnchor);
            cursor.setCharFormat(change.format);
        }
        QTextBlockFormat format = block.blockFormat();
        if (hasBackground(format) || format.nonBreakableLines()) {
            format.clearBackground();
            format.setNonBreakableLines(false);
            cursor.setPosition(block.position());
            cursor.setBlockFormat(format);
        }
    }
    cursor.endEditBlock();
}
