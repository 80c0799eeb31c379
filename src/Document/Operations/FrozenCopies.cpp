#include "FrozenCopies.h"

#include "AtomicFile.h"
#include "CopyProtection.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"
#include "PDFError.h"

#include <QByteArray>

void FrozenCopies::add(const PDFDocument& document, const QString& path, const QString& password) {
    m_copies.push_back({PDFDocumentSnapshot::of(document), path, password, document.pageCount()});
}

bool FrozenCopies::write(const std::function<bool()>& mayWrite) const {
    std::vector<QByteArray> files;
    for (const Copy& copy : m_copies) {
        PDFWriteOptions options;
        options.userPassword = options.ownerPassword = copy.password;
        files.push_back(copy.snapshot->dataRepresentation(options));
        if (!copy.password.isEmpty() && !CopyProtection::isProtected(files.back(), copy.password, copy.pageCount))
            throw PDFError(PDFError::Kind::writeFailed, QStringLiteral("The copy couldn't be opened again."));
    }
    if (!mayWrite())
        return false;
    for (std::size_t i = 0; i < m_copies.size(); ++i)
        writeFileAtomically(m_copies[i].path, files[i]);
    return true;
}
