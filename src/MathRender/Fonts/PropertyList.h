#pragma once

#include <QString>
#include <QVariantMap>

#include <stdexcept>

class QByteArray;

/// A text is not a property list. what() says in which line, and why.
class PropertyListError : public std::runtime_error {
public:
    explicit PropertyListError(const QString& reason) : std::runtime_error(reason.toStdString()) {}
};

/// Property lists in XML, of dictionaries (QVariantMap), arrays (QVariantList), strings, integers (qlonglong), reals
/// (double) and booleans.
namespace PropertyList {

/// Throws `PropertyListError` for any other text than one with a dictionary outermost.
[[nodiscard]] QVariantMap fromXml(const QByteArray& xml);

/// In UTF-8, with keys in order: equal lists give equal texts. A value of another type is a programming error.
[[nodiscard]] QByteArray toXml(const QVariantMap& dictionary);

} // namespace PropertyList
