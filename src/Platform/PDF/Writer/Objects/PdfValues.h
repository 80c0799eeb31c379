#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QColor>
#include <QDateTime>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <optional>
#include <vector>

/// Values of ours as objects of a file, and back.
namespace PdfValues {

/// A text string (ISO 32000-1, 7.9.2.2): PDFDocEncoding where that can hold it, UTF-16BE otherwise.
[[nodiscard]] QPDFObjectHandle text(const QString& text);
/// Empty for anything but a string.
[[nodiscard]] QString toText(QPDFObjectHandle object);

/// Four decimals at most; zero for what is no number.
[[nodiscard]] QPDFObjectHandle number(double value);
[[nodiscard]] QPDFObjectHandle numbers(const std::vector<double>& values);
/// The same in the syntax of content streams.
[[nodiscard]] QByteArray real(double value);
/// `fallback` for anything but a number.
[[nodiscard]] double toNumber(QPDFObjectHandle object, double fallback = 0);

[[nodiscard]] QPDFObjectHandle rect(const QRectF& rect);
/// The normalized rectangle, or none for anything but four numbers.
[[nodiscard]] std::optional<QRectF> toRect(QPDFObjectHandle object);

/// Three components of DeviceRGB, without the alpha. None and a fully transparent colour give an empty array.
[[nodiscard]] QPDFObjectHandle color(const std::optional<QColor>& color);
/// What a colour array of 1, 3 or 4 components says; none for an empty or a wrong one.
[[nodiscard]] std::optional<QColor> toColor(QPDFObjectHandle object);

/// D:YYYYMMDDHHmmSS with the offset from UTC. A null object for an invalid date.
[[nodiscard]] QPDFObjectHandle date(const QDateTime& date);
/// Invalid for anything but a date.
[[nodiscard]] QDateTime toDate(QPDFObjectHandle object);

/// The value of a key of a dictionary; null for anything that is no dictionary.
[[nodiscard]] QPDFObjectHandle entry(QPDFObjectHandle object, const std::string& key);

/// "/Name" from the name without its slash.
[[nodiscard]] QPDFObjectHandle name(const char* name);

} // namespace PdfValues
