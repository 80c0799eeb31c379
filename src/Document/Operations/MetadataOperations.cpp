#include "MetadataOperations.h"

#include "PDFDocument.h"
#include "PDFEditorDocument.h"
#include "UndoManager.h"

#include <QStringList>

#include <initializer_list>
#include <utility>

namespace {

const QString titleKey = QStringLiteral("Title");
const QString authorKey = QStringLiteral("Author");
const QString subjectKey = QStringLiteral("Subject");
const QString keywordsKey = QStringLiteral("Keywords");

DocumentMetadata metadataOf(const QVariantMap& attributes) {
    const auto text = [&attributes](const QString& key) {
        const QVariant value = attributes.value(key);
        return value.typeId() == QMetaType::QString ? value.toString() : QString();
    };
    const QVariant keywords = attributes.value(keywordsKey);
    return {text(titleKey), text(authorKey), text(subjectKey),
            keywords.typeId() == QMetaType::QStringList ? keywords.toStringList().join(QStringLiteral(", "))
                                                        : QString()};
}

QStringList keywordsIn(const QString& typed) {
    QStringList keywords;
    for (const QString& piece : typed.split(u',', Qt::SkipEmptyParts))
        if (const QString keyword = piece.trimmed(); !keyword.isEmpty())
            keywords.append(keyword);
    return keywords;
}

void applyAttributes(const QVariantMap& attributes, PDFEditorDocument& document, const QVariantMap& previous,
                     UndoManager* undoManager) {
    document.pdfDocument()->setDocumentAttributes(attributes);
    Q_EMIT document.objectWillChange();
    if (undoManager)
        undoManager->registerUndo(&document, [&document, attributes, previous, undoManager] {
            applyAttributes(previous, document, attributes, undoManager);
        });
}

} // namespace

DocumentMetadata MetadataOperations::read(const PDFDocument& document) {
    return metadataOf(document.documentAttributes());
}

void MetadataOperations::save(const DocumentMetadata& metadata, PDFEditorDocument& document, UndoManager* undoManager) {
    const QVariantMap previous = document.pdfDocument()->documentAttributes();
    const DocumentMetadata present = metadataOf(previous);
    QVariantMap attributes = previous;
    const auto put = [&attributes](const QString& key, const auto& value) {
        if (value.isEmpty())
            attributes.remove(key);
        else
            attributes.insert(key, value);
    };
    put(titleKey, metadata.title);
    put(authorKey, metadata.author);
    put(subjectKey, metadata.subject);
    if (metadata.keywords != present.keywords)
        put(keywordsKey, keywordsIn(metadata.keywords));
    if (attributes != previous)
        applyAttributes(attributes, document, previous, undoManager);
}
