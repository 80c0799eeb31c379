#include "MetadataEditorView.h"

#include "MetadataOperations.h"
#include "PDFEditorDocument.h"
#include "SheetParts.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

static constexpr int fieldWidth = 340; // pixels, for a title of some forty letters

MetadataEditorView::MetadataEditorView(std::shared_ptr<PDFEditorDocument> document, QWidget* parent)
    : QDialog(parent), m_document(std::move(document)) {
    setObjectName(QStringLiteral("metadataSheet"));
    QVBoxLayout* layout = SheetParts::begin(*this, QStringLiteral("Document Info"));
    auto* fields = new QFormLayout;
    layout->addLayout(fields);
    const auto addField = [fields](const QString& label, const QString& name, const QString& text) {
        auto* field = new QLineEdit(text);
        field->setObjectName(name);
        field->setAccessibleName(label);
        field->setMinimumWidth(fieldWidth);
        field->setCursorPosition(0); // a long text shows its beginning
        fields->addRow(label, field);
        return field;
    };
    const DocumentMetadata metadata = MetadataOperations::read(*m_document->pdfDocument());
    m_title = addField(QStringLiteral("Title"), QStringLiteral("metadataTitle"), metadata.title);
    m_author = addField(QStringLiteral("Author"), QStringLiteral("metadataAuthor"), metadata.author);
    m_subject = addField(QStringLiteral("Subject"), QStringLiteral("metadataSubject"), metadata.subject);
    m_keywords = addField(QStringLiteral("Keywords"), QStringLiteral("metadataKeywords"), metadata.keywords);
    m_keywords->setPlaceholderText(QStringLiteral("Comma-separated"));

    auto* cancel = SheetParts::button(QStringLiteral("Cancel"), QStringLiteral("cancelMetadata"));
    auto* save = SheetParts::button(QStringLiteral("Save"), QStringLiteral("saveMetadata"));
    save->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(save);
    layout->addLayout(buttons);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(save, &QPushButton::clicked, this, &MetadataEditorView::save);
    m_title->setFocus();
}

MetadataEditorView::~MetadataEditorView() = default;

void MetadataEditorView::save() {
    const DocumentMetadata metadata{m_title->text(), m_author->text(), m_subject->text(), m_keywords->text()};
    MetadataOperations::save(metadata, *m_document, m_document->undoManager().get());
    accept();
}
