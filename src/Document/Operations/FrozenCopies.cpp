#include "FrozenCopies.h"

#include "AtomicFile.h"
#include "PDFDocument.h"
#include "PDFDocumentSnapshot.h"

#include <QByteArray>

void FrozenCopies::add(const PDFDocument& document, const QString& path) {
    m_copies.push_back({PDFDocumentSnapshot::of(document), path});
}

bool FrozenCopies::write(const std::function<bool()>& mayWrite) const {
    std::vector<QByteArray> files;
    for (const Copy& copy : m_copies)
        files.push_back(copy.snapshot->dataRepresentation());
    if (!mayWrite())
        return false;
    for (std::size_t i = 0; i < m_copies.size(); ++i)
        writeFileAtomically(m_copies[i].path, files[i]);
    return true;
}
