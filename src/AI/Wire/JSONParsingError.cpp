#include "JSONParsingError.h"

#include <QString>

JSONParsingError::JSONParsingError(const QJsonParseError& error)
    : std::runtime_error(QStringLiteral("The AI service sent an answer that Quillo can't read (%1).")
                             .arg(error.errorString())
                             .toStdString()) {}
