#include "JSONParsingError.h"

#include <QString>

JSONParsingError::JSONParsingError(const QJsonParseError& error)
    : std::runtime_error(
          u"The AI service sent an answer that Quillo can't read (%1)."_qs.arg(error.errorString()).toStdString()) {}
