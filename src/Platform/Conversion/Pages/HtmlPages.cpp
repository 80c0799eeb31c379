#include "HtmlPages.h"

#include "HtmlDocument.h"
#include "HtmlFormats.h"
#include "HtmlLinks.h"
#include "HtmlPictureObject.h"
#include "LetterPages.h"
#include "TextFileReader.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QPalette>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextOption>

#include <algorithm>
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

/// Lays the document out for pages of the frame's shape, wide enough for its widest table, and returns their size.
QSizeF layOut(QTextDocument& document) {
    QSizeF size = LetterPages::frame;
    document.setPageSize(size);
    const qreal width = document.documentLayout()->documentSize().width();
    if (width > size.width() + 1) {
        size *= width / size.width();
        document.setPageSize(size);
    }
    return size;
}

void draw(const QTextDocument& document, QSizeF pageSize, LetterPages& pages) {
    const qreal scale = LetterPages::frame.width() / pageSize.width();
    QPainter& painter = pages.painter();
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = paper();
    for (int page = 0; page < std::max(document.pageCount(), 1); ++page) {
        if (page > 0)
            pages.startPage();
        context.clip = QRectF(QPointF(0, page * pageSize.height()), pageSize);
        painter.save();
        painter.scale(scale, scale);
        painter.translate(0, -context.clip.top());
        painter.setClipRect(context.clip);
        document.documentLayout()->draw(&painter, context);
        painter.restore();
    }
    HtmlLinks::add(document, pageSize.height(), scale, pages);
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
    QTextOption options;
    options.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(options);
    QFont font;
    font.setFamilies({QStringLiteral("DejaVu Serif"), QStringLiteral("serif")});
    font.setPointSizeF(12);
    font.setHintingPreference(QFont::PreferNoHinting);
    document.setDefaultFont(font);
    document.setDefaultStyleSheet(HtmlFormats::defaultStyles());
    document.setHtml(*html);
    HtmlFormats::prepare(document);
    pages.setTitle(document.metaInformation(QTextDocument::DocumentTitle));
    draw(document, layOut(document), pages);
    return pages.finish();
}
