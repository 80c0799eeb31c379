#include "WatermarkSheetView.h"

#include "PDFEditorDocument.h"
#include "SheetParts.h"
#include "WatermarkApplier.h"

#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QVBoxLayout>

#include <utility>

static constexpr int fieldWidth = 280; // pixels
// Hundredths; fainter words would hardly be seen.
static constexpr int lowestOpacity = 5;
static constexpr int firstOpacity = 25;
static constexpr int opacityStep = 5;

WatermarkSheetView::WatermarkSheetView(std::shared_ptr<PDFEditorDocument> document, UndoManager* undoManager,
                                       QWidget* parent)
    : QDialog(parent), m_document(std::move(document)), m_undoManager(undoManager),
      m_text(new QLineEdit(QStringLiteral("CONFIDENTIAL"))), m_opacity(new QSlider(Qt::Horizontal)),
      m_apply(SheetParts::button(QStringLiteral("Apply"), QStringLiteral("applyWatermark"))) {
    setObjectName(QStringLiteral("watermarkSheet"));
    QVBoxLayout* layout = SheetParts::begin(*this, QStringLiteral("Add Watermark"));
    layout->addWidget(new QLabel(QStringLiteral("Stamped diagonally on every page.")));

    m_text->setObjectName(QStringLiteral("watermarkText"));
    m_text->setAccessibleName(QStringLiteral("Watermark text"));
    m_text->setMinimumWidth(fieldWidth);
    m_text->selectAll();
    m_opacity->setObjectName(QStringLiteral("watermarkOpacity"));
    m_opacity->setAccessibleName(QStringLiteral("Opacity"));
    m_opacity->setRange(lowestOpacity, 100);
    m_opacity->setSingleStep(1);
    m_opacity->setPageStep(opacityStep);
    m_opacity->setValue(firstOpacity);
    auto* percent = new QLabel;
    percent->setObjectName(QStringLiteral("watermarkPercent"));
    percent->setMinimumWidth(percent->fontMetrics().horizontalAdvance(QStringLiteral("100%")));
    percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    const auto showPercent = [percent](int value) { percent->setText(QStringLiteral("%1%").arg(value)); };
    connect(m_opacity, &QSlider::valueChanged, percent, showPercent);
    showPercent(m_opacity->value());
    auto* opacity = new QHBoxLayout;
    opacity->addWidget(m_opacity, 1);
    opacity->addWidget(percent);
    auto* fields = new QFormLayout;
    fields->addRow(QStringLiteral("Watermark text"), m_text);
    fields->addRow(QStringLiteral("Opacity"), opacity);
    layout->addLayout(fields);

    auto* cancel = SheetParts::button(QStringLiteral("Cancel"), QStringLiteral("cancelWatermark"));
    m_apply->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_apply);
    layout->addLayout(buttons);
    connect(m_text, &QLineEdit::textChanged, this, [this] { m_apply->setEnabled(!isBlank()); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_apply, &QPushButton::clicked, this, &WatermarkSheetView::apply);
    m_text->setFocus();
}

WatermarkSheetView::~WatermarkSheetView() = default;

bool WatermarkSheetView::isBlank() const {
    return m_text->text().trimmed().isEmpty();
}

void WatermarkSheetView::apply() {
    if (isBlank())
        return;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor); // thousands of pages take a moment
    WatermarkApplier::apply(m_text->text(), m_opacity->value() / 100.0, *m_document, m_undoManager);
    QGuiApplication::restoreOverrideCursor();
    accept();
}
