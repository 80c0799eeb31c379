#include "HtmlFormats.h"

#include "LetterPages.h"

#include <QColor>
#include <QStringList>
#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextFrame>
#include <QTextLength>
#include <QTextTable>
#include <QTextTableFormat>
#include <QUrl>

#include <algorithm>
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
    for (const int property : {QTextFormat::IsAnchor, QTextFormat::AnchorHref, QTextFormat::AnchorName})
        format.clearProperty(property);
    return format;
}

/// Puts the text in the place of pictures that aren't there or can't be read.
void tellOfPictures(const QTextDocument& document, const QTextBlock& block) {
    std::vector<Change> missing;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextCharFormat format = it.fragment().charFormat();
        if (!format.isImageFormat() || format.stringProperty(QTextFormat::ImageAltText).isEmpty())
            continue;
        const QUrl name(format.toImageFormat().name());
        if (!document.resource(QTextDocument::ImageResource, name).isValid())
            missing.push_back({it.fragment().position(), it.fragment().length(), format});
    }
    QTextCursor cursor(block);
    for (auto change = missing.rbegin(); change != missing.rend(); ++change) {
        QTextCharFormat ofText = change->format;
        const QString text = ofText.stringProperty(QTextFormat::ImageAltText);
        ofText.setObjectType(QTextFormat::NoObject);
        cursor.setPosition(change->position);
        cursor.setPosition(change->position + change->length, QTextCursor::KeepAnchor);
        cursor.insertText(text.repeated(change->length), ofText);
    }
}

/// Takes the widths from tables that are said to be wider than the page, which then get what their content needs.
void letTablesFit(QTextFrame& frame) { // NOLINT(misc-no-recursion): as deep as Qt's reader has made it
    for (QTextFrame* child : frame.childFrames()) {
        if (auto* table = qobject_cast<QTextTable*>(child)) {
            QTextTableFormat format = table->format();
            qreal columns = 0;
            for (const QTextLength& column : format.columnWidthConstraints())
                columns += column.type() == QTextLength::FixedLength ? column.rawValue() : 0;
            const bool isFixed = format.width().type() == QTextLength::FixedLength;
            if (std::max(columns, isFixed ? format.width().rawValue() : 0) > LetterPages::frame.width()) {
                format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
                format.clearColumnWidthConstraints();
                table->setFormat(format);
            }
        }
        letTablesFit(*child);
    }
}

} // namespace

QString HtmlFormats::defaultStyles() {
    return QStringLiteral("a:link { color: #0000ee; text-decoration: underline }");
}

HtmlFormats::Names HtmlFormats::prepare(QTextDocument& document) {
    QTextFrameFormat page = document.rootFrame()->frameFormat();
    page.clearBackground();
    document.rootFrame()->setFrameFormat(page);
    letTablesFit(*document.rootFrame());
    Names names;
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
        tellOfPictures(document, block);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const bool isOnBackground = standsOnBackground(document, block);
        std::vector<Change> changes;
        for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment) {
            const QTextCharFormat old = fragment.fragment().charFormat();
            for (const QString& name : old.anchorNames())
                if (!names.contains(name))
                    names.insert(name, fragment.fragment().position());
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
    return names;
}
