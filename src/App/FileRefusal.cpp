#include "FileRefusal.h"

#include <QUrl>

FileRefusal FileRefusal::of(const QUrl& url) {
    const QString name = url.fileName().isEmpty() ? url.toDisplayString() : url.fileName();
    const QString sentence = url.isLocalFile() ? QStringLiteral("There is no file “%1”.")
                                               : QStringLiteral("“%1” isn't a file on this computer.");
    return {QStringLiteral("“%1” can't be opened.").arg(name), sentence.arg(name)};
}
