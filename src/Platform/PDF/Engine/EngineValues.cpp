#include "EngineValues.h"

#include <QRegularExpression>
#include <QStringDecoder>

#include <cmath>

namespace {

constexpr std::size_t longestText = std::size_t(4) << 20;
constexpr int mostNumbers = 200000;

/// Null for a key that is missing or broken.
pdf_obj* get(fz_context* context, pdf_obj* dictionary, const char* path) {
    pdf_obj* object = nullptr;
    engineTry(context, [&] { object = pdf_resolve_indirect(context, pdf_dict_getp(context, dictionary, path)); });
    return object;
}

} // namespace

QString EngineValues::text(fz_context* context, pdf_obj* object) {
    if (!pdf_is_string(context, object))
        return {};
    const std::size_t length = std::min(pdf_to_str_len(context, object), longestText);
    const QByteArrayView bytes(pdf_to_str_buf(context, object), qsizetype(length));
    if (bytes.startsWith("\xFE\xFF"))
        return QStringDecoder(QStringDecoder::Utf16BE, QStringConverter::Flag::Default)(bytes.sliced(2));
    if (bytes.startsWith("\xFF\xFE"))
        return QStringDecoder(QStringDecoder::Utf16LE, QStringConverter::Flag::Default)(bytes.sliced(2));
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes.sliced(3));
    QString decoded;
    decoded.reserve(bytes.size());
    for (const char byte : bytes)
        decoded += QChar(fz_unicode_from_pdf_doc_encoding[static_cast<unsigned char>(byte)]);
    return decoded;
}

QString EngineValues::name(fz_context* context, pdf_obj* object) {
    return pdf_is_name(context, object) ? QString::fromUtf8(pdf_to_name(context, object)) : QString();
}

std::optional<double> EngineValues::number(fz_context* context, pdf_obj* object) {
    if (!pdf_is_number(context, object))
        return std::nullopt;
    const double value = double(pdf_to_real(context, object));
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<QColor> EngineValues::color(fz_context* context, pdf_obj* array) {
    const auto part = [&](int i) {
        return std::clamp(number(context, pdf_array_get(context, array, i)).value_or(0.0), 0.0, 1.0);
    };
    switch (pdf_array_len(context, array)) {
    case 1:
        return QColor::fromRgbF(float(part(0)), float(part(0)), float(part(0)));
    case 3:
        return QColor::fromRgbF(float(part(0)), float(part(1)), float(part(2)));
    case 4:
        return QColor::fromCmykF(float(part(0)), float(part(1)), float(part(2)), float(part(3))).toRgb();
    default:
        return std::nullopt;
    }
}

QDateTime EngineValues::date(const QString& text) {
    static const QRegularExpression pattern(
        QStringLiteral(R"(^(?:D:)?(\d{4})(\d\d)?(\d\d)?(\d\d)?(\d\d)?(\d\d)?(?:([Zz+-])(?:(\d\d)(?:'?(\d\d))?)?)?)"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return {};
    const auto part = [&match](int index, int missing) {
        return match.captured(index).isEmpty() ? missing : match.captured(index).toInt();
    };
    const QDate day(part(1, 0), part(2, 1), part(3, 1));
    const QTime time(part(4, 0), part(5, 0), part(6, 0));
    if (!day.isValid() || !time.isValid())
        return {};
    const QString zone = match.captured(7);
    if (zone.isEmpty())
        return QDateTime(day, time);
    const int offset = (part(8, 0) * 60 + part(9, 0)) * 60 * (zone == QLatin1String("-") ? -1 : 1);
    return {day, time, Qt::OffsetFromUTC, offset};
}

std::vector<double> EngineValues::numbers(fz_context* context, pdf_obj* array) {
    std::vector<double> values;
    const int count = std::min(pdf_array_len(context, array), mostNumbers);
    for (int i = 0; i < count; ++i) {
        pdf_obj* entry = nullptr;
        engineTry(context, [&] { entry = pdf_array_get(context, array, i); });
        values.push_back(number(context, entry).value_or(0.0));
    }
    return values;
}

QRectF EngineValues::rect(fz_context* context, pdf_obj* array) {
    const std::vector<double> v = numbers(context, array);
    return v.size() < 4 ? QRectF() : QRectF(QPointF(v[0], v[1]), QPointF(v[2], v[3])).normalized();
}

std::optional<PDFBorder> EngineValues::border(fz_context* context, pdf_obj* annotation) {
    pdf_obj* style = get(context, annotation, "BS");
    pdf_obj* array = get(context, annotation, "Border");
    PDFBorder border;
    pdf_obj* dashes = nullptr;
    if (pdf_is_dict(context, style)) {
        border.lineWidth = number(context, get(context, style, "W")).value_or(1.0);
        const QString kind = name(context, get(context, style, "S"));
        border.style = kind == QLatin1String("D")   ? PDFBorderStyle::dashed
                       : kind == QLatin1String("B") ? PDFBorderStyle::beveled
                       : kind == QLatin1String("I") ? PDFBorderStyle::inset
                       : kind == QLatin1String("U") ? PDFBorderStyle::underline
                                                    : PDFBorderStyle::solid;
        dashes = get(context, style, "D");
    } else if (pdf_array_len(context, array) >= 3) {
        border.lineWidth = numbers(context, array)[2];
        engineTry(context, [&] { dashes = pdf_array_get(context, array, 3); });
        if (pdf_array_len(context, dashes) > 0)
            border.style = PDFBorderStyle::dashed;
    } else {
        return std::nullopt;
    }
    border.lineWidth = std::clamp(border.lineWidth, 0.0, 1000.0);
    if (border.style == PDFBorderStyle::dashed) {
        border.dashPattern = numbers(context, dashes);
        if (border.dashPattern.size() > 16 || border.dashPattern.empty())
            border.dashPattern = {3.0};
    }
    return border;
}

std::optional<EngineValues::LinkFrame> EngineValues::linkFrame(fz_context* context, pdf_obj* link) {
    LinkFrame frame{border(context, link).value_or(PDFBorder()), Qt::black};
    pdf_obj* array = get(context, link, "C");
    if (!(frame.border.lineWidth > 0) || (array && pdf_array_len(context, array) == 0))
        return std::nullopt;
    frame.color = color(context, array).value_or(frame.color);
    return frame;
}
