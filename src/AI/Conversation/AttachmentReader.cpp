#include "AttachmentReader.h"

#include "Logging.h"
#include "PDFDocument.h"
#include "PDFPage.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <exception>

namespace {

/// In bytes. The request holds a text several times over.
constexpr qint64 longestText = qint64(64) << 20;

QString textOfPdf(const QString& path) {
    constexpr int pageLimit = 10;
    QString text;
    try {
        const std::shared_ptr<PDFDocument> document = PDFDocument::fromFile(path);
        for (int i = 0; i < std::min(document->pageCount(), pageLimit); ++i) {
            const QString page = document->page(i)->string();
            if (!page.isEmpty())
                text += page + u'\n';
        }
    } catch (const std::exception& error) {
        qCWarning(Logging::ai) << "an attached PDF has no text to give:" << Logging::causes(error);
        return {};
    }
    return text;
}

QString textOfUtf8(const QString& path) {
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) // a pipe would never end
        return {};
    const QByteArray bytes = file.size() <= longestText ? file.read(longestText + 1) : QByteArray();
    if (bytes.size() > longestText) // it grows, or tells no size
        return {};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    return decoder.hasError() ? QString() : text;
}

} // namespace

QString AttachmentReader::text(const QString& path) {
    return QFileInfo(path).suffix().toLower() == u"pdf" ? textOfPdf(path) : textOfUtf8(path);
}

QStringList AttachmentReader::nameFilters() {
    return {QStringLiteral(
        "PDF and text files (*.pdf *.txt *.text *.md *.markdown *.rst *.tex *.csv *.tsv *.log *.json *.xml *.yaml "
        "*.yml *.toml *.ini *.conf *.html *.htm *.css *.rtf *.srt *.c *.h *.cc *.cpp *.hpp *.py *.js *.ts *.java "
        "*.go *.rs *.rb *.php *.swift *.sql *.sh *.diff *.patch)")};
}
