#include "SignaturePadSheet.h"

#include "ImageOperations.h"
#include "SignaturePad.h"
#include "SignatureStore.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

static constexpr int margin = 20;
static constexpr int spacing = 14;

static QPushButton* makeButton(const QString& title, const QString& name) {
    auto* button = new QPushButton(title);
    button->setObjectName(name);
    button->setAccessibleName(title);
    button->setAutoDefault(false);
    return button;
}

SignaturePadSheet::SignaturePadSheet(std::shared_ptr<SignatureStore> store, QWidget* parent)
    : QDialog(parent), m_store(std::move(store)), m_pad(new SignaturePad),
      m_clear(makeButton(QStringLiteral("Clear"), QStringLiteral("clearSignature"))),
      m_save(makeButton(QStringLiteral("Save"), QStringLiteral("saveSignature"))) {
    setObjectName(QStringLiteral("signaturePadSheet"));
    setWindowTitle(QStringLiteral("Draw Your Signature"));
    auto* heading = new QLabel(QStringLiteral("Draw Your Signature"));
    QFont font = heading->font();
    font.setBold(true);
    heading->setFont(font);
    auto* cancel = makeButton(QStringLiteral("Cancel"), QStringLiteral("cancelSignature"));
    m_save->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_clear);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_save);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(spacing);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(heading);
    layout->addWidget(m_pad);
    layout->addLayout(buttons);

    connect(m_pad, &SignaturePad::strokesChanged, this, &SignaturePadSheet::updateButtons);
    connect(m_clear, &QPushButton::clicked, m_pad, &SignaturePad::clear);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_save, &QPushButton::clicked, this, &SignaturePadSheet::save);
    updateButtons();
    cancel->setFocus();
}

SignaturePadSheet::~SignaturePadSheet() = default;

void SignaturePadSheet::updateButtons() {
    m_clear->setEnabled(!m_pad->strokes().isEmpty());
    m_save->setEnabled(!m_pad->strokes().isEmpty());
}

void SignaturePadSheet::save() {
    const std::optional<QImage> signature = ImageOperations::trimmedToOpaqueContent(m_pad->strokes().rendered());
    if (!signature)
        return;
    m_store->add(*signature);
    accept();
}
