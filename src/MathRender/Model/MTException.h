#pragma once

#include <QString>

#include <stdexcept>

/// A structural rule of formulas or their layout was broken by the program. No source text can cause it by way of the
/// parser. what() is the reason.
class MTException : public std::logic_error {
public:
    explicit MTException(const QString& reason) : std::logic_error(reason.toStdString()) {}

    [[nodiscard]] static QString name() { return QStringLiteral("Error"); }
    [[nodiscard]] QString reason() const { return QString::fromUtf8(what()); }
};
