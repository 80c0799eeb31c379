#include "CopyProtection.h"

#include "PDFSource.h"
#include "SaslPrep.h"

QString CopyProtection::refusal(const QString& password) {
    const QByteArray bytes = passwordBytes(password);
    if (bytes.size() > longestPassword)
        return QStringLiteral("That password is too long for a PDF file. Shorten it to %1 bytes: so many plain letters "
                              "and digits, fewer of others.")
            .arg(longestPassword);
    if (bytes.isEmpty())
        return QStringLiteral("That password holds nothing but characters that don't count.");
    if (bytes.contains('\0'))
        return QStringLiteral("That password holds a character that no PDF file takes.");
    return {};
}

bool CopyProtection::isProtected(const QByteArray& file, const QString& password, int pageCount) {
    const std::shared_ptr<PDFSource> copy = PDFSource::open(file);
    return copy->needsPassword() && copy->authenticate(password) && !copy->wasRepaired() &&
           copy->pageCount() == pageCount;
}
