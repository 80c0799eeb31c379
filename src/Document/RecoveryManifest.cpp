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
    return {{u"file"_qs, part.fileName},
            {u"size"_qs, part.byteCount},
            {u"sha256"_qs, QString::fromLatin1(part.sha256.toHex())}};
}

/// None for what isn't a whole number between 0 and `maximum`.
std::optional<qint64> wholeNumber(const QJsonValue& value, qint64 maximum) {
    const qint64 number = value.toInteger(-1);
    return number >= 0 && number <= maximum ? std::optional(number) : std::nullopt;
}

std::optional<RecoveryManifest::Part> decodedPart(const QJsonObject& object) {
    const std::optional<qint64> size = wholeNumber(object.value(u"size"_qs), RecoveryManifest::maximumPartSize);
    RecoveryManifest::Part part{object.value(u"file"_qs).toString(), size.value_or(0),
                                QByteArray::fromHex(object.value(u"sha256"_qs).toString().toLatin1())};
    if (!size || part.sha256.size() != sha256Size || !RecoveryManifest::partNumber(part.fileName))
        return std::nullopt;
    return part;
}

QJsonObject encodedStamp(const FileStamp& stamp) {
    // As text: a number of JSON hasn't enough digits for nanoseconds.
    return {{u"size"_qs, qint64(stamp.size)}, {u"modified"_qs, QString::number(qint64(stamp.modifiedInNanoseconds))}};
}

std::optional<FileStamp> decodedStamp(const QJsonObject& object) {
    constexpr qint64 any = std::numeric_limits<qint64>::max();
    const std::optional<qint64> size = wholeNumber(object.value(u"size"_qs), any);
    bool isNumber = false;
    FileStamp stamp;
    stamp.modifiedInNanoseconds = object.value(u"modified"_qs).toString().toLongLong(&isNumber);
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
    return name.isEmpty() ? u"Untitled"_qs : name;
}

bool isPlausiblePath(const QString& path) {
    return path.isEmpty() || (QDir::isAbsolutePath(path) && path.size() <= maximumPathLength && !path.contains(u'\0'));
}

} // namespace

QByteArray RecoveryManifest::encoded() const {
    QJsonObject object{
        {u"version"_qs, formatVersion},           {u"name"_qs, description.displayName},
        {u"path"_qs, description.originalPath},   {u"time"_qs, description.writeTime.toMSecsSinceEpoch()},
        {u"pageCount"_qs, description.pageCount}, {u"pageIndex"_qs, description.pageIndex},
        {u"base"_qs, encodedPart(base)}};
    if (description.originalStamp)
        object.insert(u"original"_qs, encodedStamp(*description.originalStamp));
    if (update)
        object.insert(u"update"_qs, encodedPart(*update));
    return QJsonDocument(object).toJson();
}

std::optional<RecoveryManifest> RecoveryManifest::decoded(const QByteArray& json) {
    constexpr qint64 latestTime = qint64(253402300799999); // the year 9999
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto base = decodedPart(object.value(u"base"_qs).toObject());
    const auto update = decodedPart(object.value(u"update"_qs).toObject());
    const auto time = wholeNumber(object.value(u"time"_qs), latestTime);
    const QString path = object.value(u"path"_qs).toString();
    if (object.value(u"version"_qs).toInteger() != formatVersion || !base || !time || !isPlausiblePath(path) ||
        (object.contains(u"update"_qs) && !update))
        return std::nullopt;

    RecoveryManifest manifest;
    manifest.base = *base;
    manifest.update = update;
    RecoveryDescription& description = manifest.description;
    description.displayName = tidyName(object.value(u"name"_qs).toString());
    description.originalPath = path;
    description.originalStamp = decodedStamp(object.value(u"original"_qs).toObject());
    description.writeTime = QDateTime::fromMSecsSinceEpoch(*time);
    constexpr qint64 most = std::numeric_limits<int>::max();
    description.pageCount = static_cast<int>(wholeNumber(object.value(u"pageCount"_qs), most).value_or(0));
    description.pageIndex = static_cast<int>(wholeNumber(object.value(u"pageIndex"_qs), most).value_or(0));
    return manifest;
}

QString RecoveryManifest::partName(const QString& kind, qint64 number) {
    return kind + u'-' + QString::number(number);
}

std::optional<qint64> RecoveryManifest::partNumber(const QString& fileName) {
    static const QRegularExpression numbered(u"\\A(?:base|update)-([0-9]{1,15})\\z"_qs);
    const QRegularExpressionMatch match = numbered.match(fileName);
    return match.hasMatch() ? std::optional(match.captured(1).toLongLong()) : std::nullopt;
}
