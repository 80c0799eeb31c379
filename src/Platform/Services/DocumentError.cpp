#include "DocumentError.h"

#include "FileError.h"
#include "Logging.h"

#include <new>

static QString withAdvice(const FileError& error) {
    return error.advice().isEmpty() ? error.sentence() : error.sentence() + QLatin1Char(' ') + error.advice();
}

DocumentError::DocumentError(const QString& sentence) : std::runtime_error(sentence.toStdString()) {}

DocumentError::DocumentError(const FileError& error) : DocumentError(withAdvice(error)) {
    m_isHelpedBySaveAs = error.remedy() != FileError::Remedy::none;
    if (const auto* changed = dynamic_cast<const FileChangedError*>(&error))
        m_changedFile = changed->found();
}

DocumentError DocumentError::ofSignatures(const QString& sentence) {
    DocumentError error(sentence);
    error.m_breaksSignatures = true;
    return error;
}

DocumentError DocumentError::from(const std::exception& error) {
    qCWarning(Logging::document) << "a document could not be read or written:" << Logging::causes(error);
    if (const auto* documentError = dynamic_cast<const DocumentError*>(&error))
        return *documentError;
    if (dynamic_cast<const std::bad_alloc*>(&error))
        return DocumentError(QStringLiteral("There isn't enough memory."));
    return DocumentError(
        QStringLiteral("Something unexpected happened: %1.").arg(QString::fromLocal8Bit(error.what())));
}

QString DocumentError::sentence() const {
    return QString::fromUtf8(what());
}
