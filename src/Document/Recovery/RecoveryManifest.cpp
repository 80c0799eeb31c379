#include "RecoveryManifest.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace {

constexpr int formatVersion = 1;
constexpr qsizetype sha256Size = 32;
constexpr qsizetype maximumNameLength = 255;
constexpr qsizetype maximumPathLength = 4096; // the kernel's own limit

QJsonObject encodedPart(const RecoveryManifest::Part& part) {
    return {{QStringLiteral("file"), part.fileName},
            {QStringLiteral("size"), part.byteCount},
            {QStringLiteral("sha256"), QString::fromLatin1(part.sha256.toHex())}};
}

/// None for what isn't a whole number between 0 and `maximum`.
std::optional<qint64> wholeNumber(const QJsonValue& value, qint64 maximum) {
    const qint64 number = value.toInteger(-1);
    return number >= 0 && number <= maximum ? std::optional(number) : std::nullopt;
}

std::optional<RecoveryManifest::Part> decodedPart(const QJsonObject& object) {
    const std::optional<qint64> size =
        wholeNumber(object.value(QStringLiteral("size")), RecoveryManifest::maximumPartSize);
    RecoveryManifest::Part part{object.value(QStringLiteral("file")).toString(), size.value_or(0),
                                QByteArray::fromHex(object.value(QStringLiteral("sha256")).toString().toLatin1())};
    if (!size || part.sha256.size() != sha256Size || !RecoveryManifest::partNumber(part.fileName))
        return std::nullopt;
    return part;
}

QJsonObject encodedStamp(const FileStamp& stamp) {
    // As text: a number of JSON hasn't enough digits for nanoseconds.
    return {{QStringLiteral("size"), qint64(stamp.size)},
            {QStringLiteral("modified"), QString::number(qint64(stamp.modifiedInNanoseconds))}};
}

std::optional<FileStamp> decodedStamp(const QJsonObject& object) {
    constexpr qint64 any = std::numeric_limits<qint64>::max();
    const std::optional<qint64> size = wholeNumber(object.value(QStringLiteral("size")), any);
    bool isNumber = false;
    FileStamp stamp;
    stamp.modifiedInNanoseconds = object.value(QStringLiteral("modified")).toString().toLongLong(&isNumber);
    if (!size || !isNumber)
        return std::nullopt;
    stamp.size = *size;
    return stamp;
}

/// One line that fits into a window and names a file.
QString tidyName(QString name) {
    const auto isOdd = [](QChar character) {
        return (!character.isPrint() && !character.isSurrogate()) || character == u'/';
    };
    std::replace_if(name.begin(), name.end(), isOdd, u' ');
    name = name.simplified().left(maximumNameLength);
    return name.isEmpty() ? QStringLiteral("Untitled") : name;
}

bool isPlausiblePath(const QString& path) {
    return path.isEmpty() || (QDir::isAbsolutePath(path) && path.size() <= maximumPathLength && !path.contains(u'\0'));
}

} // namespace

QByteArray RecoveryManifest::encoded() const {
    QJsonObject object{{QStringLiteral("version"), formatVersion},
                       {QStringLiteral("name"), description.displayName},
                       {QStringLiteral("path"), description.originalPath},
                       {QStringLiteral("imported"), description.importedPath},
                       {QStringLiteral("time"), description.writeTime.toMSecsSinceEpoch()},
                       {QStringLiteral("pageCount"), description.pageCount},
                       {QStringLiteral("pageIndex"), description.pageIndex},
                       {QStringLiteral("base"), encodedPart(base)}};
    if (description.originalStamp)
        object.insert(QStringLiteral("original"), encodedStamp(*description.originalStamp));
    if (update)
        object.insert(QStringLiteral("update"), encodedPart(*update));
    return QJsonDocument(object).toJson();
}

std::optional<RecoveryManifest> RecoveryManifest::decoded(const QByteArray& json) {
    constexpr qint64 latestTime = qint64(253402300799999); // the year 9999
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto base = decodedPart(object.value(QStringLiteral("base")).toObject());
    const auto update = decodedPart(object.value(QStringLiteral("update")).toObject());
    const auto time = wholeNumber(object.value(QStringLiteral("time")), latestTime);
    const QString path = object.value(QStringLiteral("path")).toString();
    if (object.value(QStringLiteral("version")).toInteger() != formatVersion || !base || !time ||
        !isPlausiblePath(path) || (object.contains(QStringLiteral("update")) && !update))
        return std::nullopt;

    RecoveryManifest manifest;
    manifest.base = *base;
    manifest.update = update;
    RecoveryDescription& description = manifest.description;
    description.displayName = tidyName(object.value(QStringLiteral("name")).toString());
    description.originalPath = path;
    if (const QString imported = object.value(QStringLiteral("imported")).toString(); isPlausiblePath(imported))
        description.importedPath = imported;
    description.originalStamp = decodedStamp(object.value(QStringLiteral("original")).toObject());
    description.writeTime = QDateTime::fromMSecsSinceEpoch(*time);
    constexpr qint64 most = std::numeric_limits<int>::max();
    description.pageCount = static_cast<int>(wholeNumber(object.value(QStringLiteral("pageCount")), most).value_or(0));
    description.pageIndex = static_cast<int>(wholeNumber(object.value(QStringLiteral("pageIndex")), most).value_or(0));
    return manifest;
}

QString RecoveryManifest::partName(const QString& kind, qint64 number) {
    return kind + u'-' + QString::number(number);
}

std::optional<qint64> RecoveryManifest::partNumber(const QString& fileName) {
    static const QRegularExpression numbered(QStringLiteral("\\A(?:base|update)-([0-9]{1,15})\\z"));
    const QRegularExpressionMatch match = numbered.match(fileName);
    return match.hasMatch() ? std::optional(match.captured(1).toLongLong()) : std::nullopt;
}
