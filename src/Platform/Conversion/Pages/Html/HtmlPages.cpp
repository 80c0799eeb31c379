#include "HtmlPages.h"

#include "HtmlDocument.h"
#include "HtmlFormats.h"
#include "HtmlLayout.h"
#include "HtmlLinks.h"
#include "HtmlNumbers.h"
#include "HtmlParagraphs.h"
#include "HtmlPictureObject.h"
#include "HtmlSource.h"
#include "LetterPages.h"
#include "ShapedText.h"
#include "TextFileReader.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QHash>
#include <QList>
#include <QPalette>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextBlock>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextOption>
#include <QTextTable>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

/// The encoding that the HTML itself names, which only counts where its bytes don't tell.
QByteArray namedEncoding(const QByteArray& html) {
    static const QRegularExpression naming(QStringLiteral("<meta[^>]*charset\\s*=\\s*[\"']?\\s*([\\w:.-]+)"),
                                           QRegularExpression::CaseInsensitiveOption);
    constexpr qsizetype headOfFile = 4096;
    return naming.match(QString::fromLatin1(html.left(headOfFile))).captured(1).toLatin1();
}

std::optional<QString> textOf(const QString& source) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    TextFileReader reader(file);
    if (!reader.isText())
        return std::nullopt;
    if (reader.isGuess()) {
        const QByteArray html = file.readAll();
        const QByteArray name = namedEncoding(html);
        QStringDecoder decoder(name.constData());
        if (decoder.isValid() && name.compare("iso-8859-1", Qt::CaseInsensitive) != 0)
            return QString(decoder.decode(html));
        return westernText(html);
    }
    QString text;
    for (QString piece = reader.next(); !piece.isEmpty(); piece = reader.next())
        text += piece;
    return file.error() == QFileDevice::NoError ? std::optional(text) : std::nullopt;
}

/// Black on white, whatever the desktop's colours are.
QPalette paper() {
    QPalette palette(Qt::white, Qt::white);
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, Qt::black);
    return palette;
}

/// Pages of the frame's shape that are at least so wide. The height is whole: Qt calculates with whole pages.
QSizeF pageOf(qreal width) {
    const qreal height = std::ceil(width * LetterPages::frame.height() / LetterPages::frame.width());
    return {height * LetterPages::frame.width() / LetterPages::frame.height(), height};
}

/// How wide the document gets on pages of that width: wider, if it has words or tables that can't be narrower.
qreal widthOn(QTextDocument& document, qreal width, QTextOption::WrapMode wrapping) {
    QTextOption options = document.defaultTextOption();
    options.setWrapMode(wrapping);
    document.setDefaultTextOption(options);
    document.setPageSize(pageOf(width));
    return document.documentLayout()->documentSize().width();
}

bool hasTables(const QTextDocument& document) {
    const QList<QTextFrame*> frames = document.rootFrame()->childFrames();
    return std::any_of(frames.begin(), frames.end(),
                       [](const QTextFrame* frame) { return qobject_cast<const QTextTable*>(frame) != nullptr; });
}

/// Lays the document out and returns the size of its pages, which are scaled to the frame. A table that is a little too
/// wide makes all of it smaller; in a wider one, as in text without tables, long words are broken.
QSizeF layOut(QTextDocument& document) {
    const qreal frame = LetterPages::frame.width();
    constexpr qreal rounding = 1;
    constexpr qreal mostShrinking = 1.5; // still readable
    qreal width = widthOn(document, frame, QTextOption::WordWrap);
    if (width > frame + rounding) {
        const bool breaksWords = width > frame * mostShrinking || !hasTables(document);
        const auto wrapping = breaksWords ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::WordWrap;
        if (breaksWords)
            width = widthOn(document, frame, wrapping);
        if (width > frame + rounding)
            widthOn(document, width, wrapping);
    }
    return document.pageSize();
}

void addShapedText(const QTextDocument& document, qreal pageHeight, qreal scale, LetterPages& pages) {
    ShapedText shaped(pages, true);
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextLayout& layout = *block.layout();
        const QString text = block.text();
        const QPointF origin = HtmlLayout::originOf(document, block);
        for (int i = 0; i < layout.lineCount(); ++i) {
            const QTextLine line = layout.lineAt(i);
            const qreal middle = origin.y() + line.y() + line.height() / 2;
            const int page = std::clamp(int(std::floor(middle / pageHeight)), 0, pages.pageCount() - 1);
            shaped.add(layout, line, text, {page, origin - QPointF(0, page * pageHeight), scale});
        }
    }
}

void draw(const QTextDocument& document, const HtmlFormats::Names& names, QSizeF pageSize, LetterPages& pages) {
    const qreal scale = LetterPages::frame.width() / pageSize.width();
    QPainter& painter = pages.painter();
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = paper();
    const QHash<int, QList<QTextBlock>> numbered = HtmlNumbers::byPage(document, pageSize.height());
    constexpr qreal touching = 0.5; // the first line of the next page touches this one, and would be drawn on both
    for (int page = 0; page < std::max(document.pageCount(), 1); ++page) {
        if (page > 0)
            pages.startPage();
        const QRectF area(QPointF(0, page * pageSize.height()), pageSize);
        context.clip = area.adjusted(0, touching, 0, -touching);
        painter.save();
        painter.scale(scale, scale);
        painter.translate(0, -area.top());
        painter.setClipRect(area.adjusted(0, 0, 0, -touching));
        document.documentLayout()->draw(&painter, context);
        for (const QTextBlock& block : numbered.value(page))
            HtmlNumbers::draw(document, block, painter);
        painter.restore();
    }
    pages.dropHiddenText();
    addShapedText(document, pageSize.height(), scale, pages);
    HtmlLinks::add(document, names, pageSize.height(), scale, pages);
}

} // namespace

bool HtmlPages::write(const QString& source, const QString& destination) {
    const std::optional<QString> html = textOf(source);
    if (!html)
        return false;
    LetterPages pages(destination);
    if (!pages.isOpen())
        return false;
    HtmlDocument document(QFileInfo(source).absolutePath());
    HtmlPictureObject pictures;
    document.setUndoRedoEnabled(false);
    document.documentLayout()->setPaintDevice(pages.device());
    document.documentLayout()->registerHandler(QTextFormat::ImageObject, &pictures);
    document.setUseDesignMetrics(true);
    document.setDocumentMargin(0);
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Serif"), QStringLiteral("serif")});
    font.setPointSizeF(12);
    font.setHintingPreference(QFont::PreferNoHinting);
    document.setDefaultFont(font);
    document.setDefaultStyleSheet(HtmlFormats::defaultStyles());
    document.setLayoutEnabled(false); // until it is as it will be
    document.setHtml(HtmlSource::simplified(*html));
    HtmlNumbers::prepare(document);
    HtmlParagraphs::divide(document);
    const HtmlFormats::Names names = HtmlFormats::prepare(document);
    document.setLayoutEnabled(true);
    pages.setTitle(document.metaInformation(QTextDocument::DocumentTitle).simplified());
    draw(document, names, layOut(document), pages);
    return pages.finish();
}
