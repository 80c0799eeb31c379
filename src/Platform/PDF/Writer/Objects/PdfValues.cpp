#include "PdfValues.h"

#include <QRegularExpression>
#include <QTimeZone>

#include <cmath>

QPDFObjectHandle PdfValues::text(const QString& text) {
    return QPDFObjectHandle::newUnicodeString(text.toStdString());
}

QString PdfValues::toText(QPDFObjectHandle object) {
    return object.isString() ? QString::fromStdString(object.getUTF8Value()) : QString();
}

QPDFObjectHandle PdfValues::number(double value) {
    if (!std::isfinite(value))
        return QPDFObjectHandle::newInteger(0);
    if (value == std::floor(value) && std::abs(value) < 1e9)
        return QPDFObjectHandle::newInteger(static_cast<long long>(value));
    return QPDFObjectHandle::newReal(value, 4);
}

QPDFObjectHandle PdfValues::numbers(const std::vector<double>& values) {
    QPDFObjectHandle array = QPDFObjectHandle::newArray();
    for (const double value : values)
        array.appendItem(number(value));
    return array;
}

QByteArray PdfValues::real(double value) {
    return QByteArray::fromStdString(number(value).unparse());
}

double PdfValues::toNumber(QPDFObjectHandle object, double fallback) {
    double value = fallback;
    return object.getValueAsNumber(value) && std::isfinite(value) ? value : fallback;
}

QPDFObjectHandle PdfValues::rect(const QRectF& rect) {
    return numbers({rect.left(), rect.top(), rect.right(), rect.bottom()});
}

std::optional<QRectF> PdfValues::toRect(QPDFObjectHandle object) {
    if (!object.isArray() || object.getArrayNItems() != 4)
        return std::nullopt;
    double edges[4];
    for (int i = 0; i < 4; ++i)
        if (!object.getArrayItem(i).getValueAsNumber(edges[i]) || !std::isfinite(edges[i]))
            return std::nullopt;
    return QRectF(QPointF(edges[0], edges[1]), QPointF(edges[2], edges[3])).normalized();
}

QPDFObjectHandle PdfValues::color(const std::optional<QColor>& color) {
    if (!color || color->alpha() == 0)
        return QPDFObjectHandle::newArray();
    const QColor rgb = color->toRgb();
    return numbers({rgb.redF(), rgb.greenF(), rgb.blueF()});
}

std::optional<QColor> PdfValues::toColor(QPDFObjectHandle object) {
    if (!object.isArray())
        return std::nullopt;
    const int count = object.getArrayNItems();
    double parts[4] = {};
    for (int i = 0; i < std::min(count, 4); ++i)
        parts[i] = std::clamp(toNumber(object.getArrayItem(i)), 0.0, 1.0);
    switch (count) {
    case 1:
        return QColor::fromRgbF(float(parts[0]), float(parts[0]), float(parts[0]));
    case 3:
        return QColor::fromRgbF(float(parts[0]), float(parts[1]), float(parts[2]));
    case 4:
        return QColor::fromCmykF(float(parts[0]), float(parts[1]), float(parts[2]), float(parts[3])).toRgb();
    default:
        return std::nullopt;
    }
}

QPDFObjectHandle PdfValues::date(const QDateTime& date) {
    if (!date.isValid())
        return QPDFObjectHandle::newNull();
    QString text = date.toString(QStringLiteral("'D:'yyyyMMddHHmmss"));
    const int minutes = date.offsetFromUtc() / 60;
    if (minutes == 0)
        text += QLatin1Char('Z');
    else
        text += QStringLiteral("%1%2'%3'")
                    .arg(minutes < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                    .arg(std::abs(minutes) / 60, 2, 10, QLatin1Char('0'))
                    .arg(std::abs(minutes) % 60, 2, 10, QLatin1Char('0'));
    return QPDFObjectHandle::newString(text.toStdString());
}

QDateTime PdfValues::toDate(QPDFObjectHandle object) {
    // ISO 32000-1, 7.9.4: everything after the year may be missing; the "D:" is missing in old files.
    static const QRegularExpression pattern(QStringLiteral(
        "^(?:D:)?(\\d{4})(\\d\\d)?(\\d\\d)?(\\d\\d)?(\\d\\d)?(\\d\\d)?(?:([Zz+-])(?:(\\d\\d)'?(\\d\\d)?)?)?"));
    const QRegularExpressionMatch match = pattern.match(toText(object));
    if (!match.hasMatch())
        return {};
    const auto part = [&match](int index, int missing) {
        return match.capturedView(index).isEmpty() ? missing : match.capturedView(index).toInt();
    };
    const QDate day(part(1, 0), part(2, 1), part(3, 1));
    const QTime time(part(4, 0), part(5, 0), part(6, 0));
    const QStringView sign = match.capturedView(7);
    if (sign.isEmpty())
        return {day, time};
    if (sign[0] == u'Z' || sign[0] == u'z')
        return {day, time, Qt::UTC};
    const int seconds = part(8, 0) * 3600 + part(9, 0) * 60;
    return {day, time, Qt::OffsetFromUTC, sign[0] == u'-' ? -seconds : seconds};
}

QPDFObjectHandle PdfValues::name(const char* name) {
    return QPDFObjectHandle::newName(std::string("/") + name);
}

QPDFObjectHandle PdfValues::entry(QPDFObjectHandle object, const std::string& key) {
    return object.isDictionary() ? object.getKey(key) : QPDFObjectHandle::newNull();
}
