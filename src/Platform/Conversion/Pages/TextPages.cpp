#include "TextPages.h"

#include "LetterPages.h"
#include "TextFileReader.h"
#include "TextFlow.h"

#include <QFile>

bool TextPages::write(const QString& source, const QString& destination) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    TextFileReader reader(file);
    if (!reader.isText())
        return false;
    LetterPages pages(destination);
    if (!pages.isOpen())
        return false;
    TextFlow flow(pages);
    for (QString piece = reader.next(); !piece.isEmpty(); piece = reader.next())
        flow.add(piece);
    flow.end();
    return file.error() == QFileDevice::NoError && pages.finish();
}
