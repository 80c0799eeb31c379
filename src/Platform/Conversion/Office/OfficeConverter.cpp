#include "OfficeConverter.h"

#include "Logging.h"
#include "OfficeFormat.h"
#include "OfficeProgram.h"
#include "PDFDocument.h"
#include "PDFSource.h"
#include "RichText.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace {

bool opens(const QString& path) {
    try {
        return PDFDocument::openSource(path)->pageCount() > 0;
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "what LibreOffice wrote can't be opened:" << Logging::causes(error);
        return false;
    }
}

OfficeConverter::Outcome convertFile(const QString& source, const OfficeFormat& format, const QString& destination,
                                     const std::stop_token& stop) {
    using Outcome = OfficeConverter::Outcome;
    const std::optional<OfficeProgram> program = OfficeProgram::find(format.component);
    if (!program)
        return Outcome::programMissing;
    switch (program->writePages(source, format, destination, stop)) {
    case OfficeProgram::Outcome::stopped:
        return Outcome::stopped;
    case OfficeProgram::Outcome::failed:
        return Outcome::failed;
    case OfficeProgram::Outcome::written:
        break;
    }
    if (opens(destination))
        return Outcome::converted;
    QFile::remove(destination);
    return Outcome::failed;
}

} // namespace

OfficeConverter::Outcome OfficeConverter::convert(const QString& source, const QString& destination,
                                                  const std::stop_token& stop) {
    const bool isFolder = QFileInfo(source).isDir();
    std::optional<OfficeFormat> format = OfficeFormat::of(source);
    if (!isFolder && (!format || format->suffix != u"rtf"))
        return format ? convertFile(source, *format, destination, stop) : Outcome::failed;
    const QTemporaryDir folder;
    const QString whole = folder.filePath(QStringLiteral("document.rtf"));
    if (!folder.isValid() || !RichText::write(source, whole))
        return Outcome::failed;
    format = OfficeFormat::of(whole);
    return format ? convertFile(whole, *format, destination, stop) : Outcome::failed;
}
