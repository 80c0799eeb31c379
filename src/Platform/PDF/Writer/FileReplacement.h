#pragma once

#include <QByteArray>
#include <QString>

/// Puts bytes in the place of a file, or makes the file: whoever looks, also after a crash, finds the old content or
/// the new one, complete. Symbolic links are followed and kept; the permissions of an existing file stay. Throws
/// `PDFError` with the old file as it was and nothing left behind.
void replaceFile(const QString& path, const QByteArray& bytes);
