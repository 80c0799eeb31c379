#include "TestPdf.h"

#include "PdfFixtures.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

QByteArray TestPdf::bytes() const {
    PdfFixture fixture;
    for (int page = 0; page < pageCount; ++page)
        fixture.addPage({QStringLiteral("Page %1").arg(page + 1)});
    if (!linkAddress.isEmpty())
        fixture.addUriLink(0, QRectF(0, 0, 612, 396), linkAddress);
    if (!password.isEmpty())
        return fixture.encrypted(password, password, PdfFixture::Encryption::aes256);
    return isDamaged ? PdfFixture::damaged(fixture.bytes()) : fixture.bytes();
}

QUrl TestPdf::write(const QString& folder, const QString& name) const {
    QFile file(QDir(folder).filePath(name));
    if (!file.open(QFile::WriteOnly) || file.write(bytes()) < 0)
        throw std::runtime_error("A test file can't be written.");
    return QUrl::fromLocalFile(file.fileName());
}
