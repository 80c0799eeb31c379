#include "MarkdownTextWriter.h"

#include "InlineMarkdown.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QUrl>

static constexpr double equationSize = 22; // points
static constexpr char16_t zeroWidthSpace = 0x200B;

MarkdownTextWriter::MarkdownTextWriter(const MarkdownStyle& style, const QColor& formulaColor,
                                       const MathImageSource& mathImages, int pageCount)
    : m_style(style), m_formulaColor(formulaColor), m_pageCount(pageCount) {
    if (mathImages)
        m_mathImages = [this, mathImages](const QString& latex, double fontSize, const QColor& color) {
            if (m_imageCount >= mostImages)
                return QImage();
            ++m_imageCount;
            return mathImages(latex, fontSize, color);
        };
}

void MarkdownTextWriter::writeInline(QTextCursor& cursor, const QString& raw, const QTextCharFormat& format) {
    m_breaker.reset();
    const InlineMarkdown markdown(raw, m_formulaColor, m_mathImages, m_pageCount);
    for (const InlineRun& run : markdown.text()) {
        if (run.image.isNull())
            writeText(cursor, run.text, m_style.applied(run, format));
        else
            writeImage(cursor, run.text, run.image);
    }
}

void MarkdownTextWriter::writePlain(QTextCursor& cursor, const QString& text, const QTextCharFormat& format) {
    m_breaker.reset();
    writeText(cursor, text, format);
}

void MarkdownTextWriter::writeEquation(QTextCursor& cursor, const QString& latex) {
    const QImage image = m_mathImages ? m_mathImages(latex, equationSize, m_formulaColor) : QImage();
    if (image.isNull())
        writePlain(cursor, latex, m_style.equationSource());
    else
        writeImage(cursor, QStringLiteral("$$%1$$").arg(latex), image);
}

void MarkdownTextWriter::writeText(QTextCursor& cursor, const QString& text, const QTextCharFormat& format) {
    const QStringList pieces = m_breaker.pieces(DisplayText::cleaned(text));
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (i > 0) {
            QTextCharFormat breakFormat = format;
            breakFormat.setProperty(insertedBreak, true);
            cursor.insertText(QChar(zeroWidthSpace), breakFormat);
        }
        cursor.insertText(pieces[i], format);
    }
}

void MarkdownTextWriter::writeImage(QTextCursor& cursor, const QString& source, const QImage& image) {
    const QString name = QStringLiteral("formula:%1").arg(++m_nameCount);
    cursor.document()->addResource(QTextDocument::ImageResource, QUrl(name), image);
    QTextImageFormat format;
    format.setName(name);
    format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
    format.setProperty(formulaSource, source);
    cursor.insertImage(format);
}
