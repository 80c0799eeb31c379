#include "HtmlPictureObject.h"

#include "HtmlPicture.h"
#include "LetterPages.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QTextTableFormat>
#include <QUrl>
#include <QVariant>

#include <algorithm>

namespace {

QImage pictureOf(const QTextFormat& format, const QTextDocument* document) {
    return document->resource(QTextDocument::ImageResource, QUrl(format.toImageFormat().name())).value<QImage>();
}

/// How far the text at a position is from the edges of its page, with room for the other columns of its table.
qreal indentOf(const QTextDocument* document, int position) {
    const QTextBlock block = document->findBlock(position);
    const int lists = block.textList() ? block.textList()->format().indent() : 0;
    const QTextBlockFormat format = block.blockFormat();
    const qreal indent =
        format.leftMargin() + format.rightMargin() + (format.indent() + lists) * document->indentWidth();
    const QTextTable* table = QTextCursor(block).currentTable();
    if (!table)
        return indent;
    constexpr qreal otherColumn = 96; // an inch, for words
    const QTextTableFormat ofTable = table->format();
    return indent + (table->columns() - 1) * otherColumn + ofTable.cellSpacing() * (table->columns() + 1) +
           2 * table->columns() * (ofTable.cellPadding() + ofTable.border());
}

} // namespace

QSizeF HtmlPictureObject::intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) {
    const QImage picture = pictureOf(format, document);
    if (picture.isNull())
        return {0, 0};
    const QTextImageFormat asked = format.toImageFormat();
    QSizeF size = picture.deviceIndependentSize();
    if (asked.width() > 0 && asked.height() > 0)
        size = {asked.width(), asked.height()};
    else if (asked.width() > 0)
        size *= asked.width() / size.width();
    else if (asked.height() > 0)
        size *= asked.height() / size.height();
    constexpr qreal lineEnds = 24; // what a line needs below the picture that stands in it
    constexpr qreal smallestWidth = 48;
    const QSizeF most(std::max(LetterPages::frame.width() - indentOf(document, position), smallestWidth),
                      LetterPages::frame.height() - lineEnds);
    if (size.width() > most.width() || size.height() > most.height())
        size.scale(most, Qt::KeepAspectRatio);
    return size;
}

void HtmlPictureObject::drawObject(QPainter* painter, const QRectF& area, QTextDocument* document, int /*position*/,
                                   const QTextFormat& format) {
    const QImage picture = pictureOf(format, document);
    if (picture.isNull())
        return;
    painter->save();
    painter->setRenderHint(QPainter::LosslessImageRendering, !HtmlPicture::isPhotograph(picture));
    painter->drawImage(area, picture);
    painter->restore();
}
