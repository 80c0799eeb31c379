#include "DocumentError.h"

DocumentError::DocumentError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

QString DocumentError::sentence() const {
    return QString::fromUtf8(what());
}
