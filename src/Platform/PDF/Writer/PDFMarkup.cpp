#include "PDFMarkup.h"

#include "Logging.h"
#include "PDFError.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>

namespace {

bool isField(QPDFObjectHandle annotation) {
    return annotation.isDictionary() && annotation.getKey("/Subtype").isNameAndEquals("/Widget");
}

void keepFields(QPDFObjectHandle page) {
    QPDFObjectHandle annotations = page.getKey("/Annots");
    if (!annotations.isArray())
        return;
    std::vector<QPDFObjectHandle> kept = annotations.getArrayAsVector();
    kept.erase(std::remove_if(kept.begin(), kept.end(), [](const auto& each) { return !isField(each); }), kept.end());
    if (kept.empty())
        page.removeKey("/Annots");
    else
        page.replaceKey("/Annots", QPDFObjectHandle::newArray(kept)); // pages may share the old one
}

} // namespace

QByteArray PDFMarkup::removed(const QByteArray& pdf) {
    try {
        QPDF file;
        file.setSuppressWarnings(true);
        file.processMemoryFile("document", pdf.constData(), static_cast<std::size_t>(pdf.size()));
        for (const QPDFObjectHandle& page : file.getAllPages())
            keepFields(page);
        QPDFWriter writer(file);
        writer.setOutputMemory();
        writer.setStreamDataMode(qpdf_s_preserve);
        writer.write();
        const std::shared_ptr<Buffer> bytes = writer.getBufferSharedPointer();
        return {reinterpret_cast<const char*>(bytes->getBuffer()), static_cast<qsizetype>(bytes->getSize())};
    } catch (const std::bad_alloc&) {
        std::throw_with_nested(PDFError(PDFError::Kind::writeFailed, QStringLiteral("There isn't enough memory.")));
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "taking the markup off a file failed:" << Logging::causes(error);
        std::throw_with_nested(
            PDFError(PDFError::Kind::writeFailed, QStringLiteral("The file couldn't be put together.")));
    }
}
