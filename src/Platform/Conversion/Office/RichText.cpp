#include "RichText.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QRegularExpression>

#include <utility>

namespace {

constexpr qint64 largestText = 64 << 20;    // bytes
constexpr qint64 largestPicture = 64 << 20; // bytes
constexpr int mostMegabytes = 256;          // of an unpacked picture
constexpr int twipsInPixel = 15;            // at 96 to the inch

/// The bytes of a name as it stands in the text: \'e9 for a character beyond ASCII, {}\ after a backslash.
QString plainName(QString name) {
    static const QRegularExpression code(QStringLiteral(R"(\\'([0-9a-fA-F]{2}))"));
    for (auto match = code.match(name); match.hasMatch(); match = code.match(name))
        name.replace(match.capturedStart(), match.capturedLength(), QChar(match.captured(1).toInt(nullptr, 16)));
    return name.remove(u'\\').trimmed();
}

/// A picture as a group of the text; empty when the folder has none of that name.
QString pictureGroup(const QDir& folder, const QString& name, QSize twips) {
    QFile file(folder.filePath(name));
    // Only what lies in the folder itself: a name may come with a path, and a link may lead anywhere.
    if (name.contains(u'/') || QFileInfo(file).isSymLink() || file.size() > largestPicture ||
        !file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() * 4 > qint64(mostMegabytes) << 20)
        return {};
    if (format != "png" && format != "jpeg") {
        QByteArray png;
        QBuffer out(&png);
        const QImage image = reader.read();
        if (image.isNull() || !image.save(&out, "PNG"))
            return {};
        bytes = png;
    }
    if (twips.isEmpty())
        twips = size * twipsInPixel;
    return QStringLiteral(R"({\pict\%1\picwgoal%2\pichgoal%3 %4})")
        .arg(format == "jpeg" ? QStringLiteral("jpegblip") : QStringLiteral("pngblip"))
        .arg(twips.width())
        .arg(twips.height())
        .arg(QString::fromLatin1(bytes.toHex()));
}

QString withPictures(const QString& text, const QDir& folder) {
    // {{\NeXTGraphic picture.png \width2400 \height1800 …}¬}: the sign stands where the picture is.
    static const QRegularExpression attachment(QStringLiteral(
        R"(\{\{\\NeXTGraphic ((?:\\'[0-9a-fA-F]{2}|\\[{}\\]|[^\\{}])*)([^{}]*)\}(?:\\'ac|\x{ac})?\s*\})"));
    static const QRegularExpression width(QStringLiteral(R"(\\width(\d{1,6}))"));
    static const QRegularExpression height(QStringLiteral(R"(\\height(\d{1,6}))"));
    QString whole;
    qsizetype copied = 0;
    for (auto matches = attachment.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QSize twips(width.match(match.captured(2)).captured(1).toInt(),
                          height.match(match.captured(2)).captured(1).toInt());
        whole += QStringView(text).mid(copied, match.capturedStart() - copied);
        whole += pictureGroup(folder, plainName(match.captured(1)), twips);
        copied = match.capturedEnd();
    }
    return whole + text.mid(copied);
}

/// Word marks its links with a character style of this name. Where a file has none, a link's text is marked with a
/// number that nobody uses.
QString withLinks(QString text) {
    static const QRegularExpression link(
        QStringLiteral(R"((HYPERLINK[^{}]{0,4000}[{}\s]{0,20}[^{}]{0,200}\{\\fldrslt))"));
    const qsizetype before = text.size();
    text.replace(link, QStringLiteral(R"(\1\cs4095 )"));
    if (text.size() == before)
        return text;
    const QString style = QStringLiteral(R"({\*\cs4095 Hyperlink;})");
    const QString sheet = QStringLiteral(R"({\stylesheet)");
    if (const qsizetype at = text.indexOf(sheet); at >= 0)
        return text.insert(at + sheet.size(), style);
    static const QRegularExpression start(QStringLiteral(R"(^\{\\rtf\d*)"));
    return text.insert(start.match(text).capturedEnd(), sheet + style + u'}');
}

} // namespace

bool RichText::write(const QString& source, const QString& destination) {
    const bool isFolder = QFileInfo(source).isDir();
    QFile file(isFolder ? source + QStringLiteral("/TXT.rtf") : source);
    if ((isFolder && QFileInfo(file).isSymLink()) || !file.open(QIODevice::ReadOnly))
        return false;
    if (file.size() > largestText)
        return !isFolder && file.copy(destination);
    QString text = QString::fromLatin1(file.readAll());
    if (!text.startsWith(QStringLiteral(R"({\rtf)")))
        return false;
    if (isFolder)
        text = withPictures(text, QDir(source));
    const QByteArray bytes = withLinks(std::move(text)).toLatin1();
    QFile written(destination);
    return written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size() && written.flush();
}
