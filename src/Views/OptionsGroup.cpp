#include "OptionsGroup.h"

#include "ColorGroup.h"
#include "LineEndStyle.h"
#include "LineStylePreview.h"
#include "PointSizeField.h"
#include "SegmentedChoice.h"
#include "ToolState.h"
#include "ToolbarButton.h"

#include <QComboBox>

#include <algorithm>

static constexpr int spacing = 6;

OptionsGroup::OptionsGroup(std::shared_ptr<ToolState> toolState, QWidget* parent)
    : ToolbarGroup(QStringLiteral("Options"), spacing, parent), m_toolState(std::move(toolState)),
      m_colors(new ColorGroup(m_toolState)) {
    addWidget(m_colors);
    makeFontGroup();
    makeStrokeWidth();
    makeLineEndButton();
    makeEraserGroup();
    makeFormGroup();
    addStretch();
    connect(m_toolState.get(), &ToolState::toolChanged, this, &OptionsGroup::showOptions);
    showOptions();
}

OptionsGroup::~OptionsGroup() = default;

void OptionsGroup::makeFontGroup() {
    auto* font = new QComboBox;
    font->setObjectName(QStringLiteral("fontChoice"));
    font->setAccessibleName(QStringLiteral("Text box font"));
    font->setToolTip(QStringLiteral("Text box font"));
    for (const AnnotationFontInfo& info : allAnnotationFonts()) {
        font->addItem(info.title);
        font->setItemData(static_cast<int>(info.font), platformFont(info.font, font->font().pointSizeF()),
                          Qt::FontRole);
    }
    connect(font, &QComboBox::activated, m_toolState.get(),
            [this](int index) { m_toolState->setFontChoice(static_cast<AnnotationFont>(index)); });
    const auto showFont = [this, font] { font->setCurrentIndex(static_cast<int>(m_toolState->fontChoice())); };
    connect(m_toolState.get(), &ToolState::fontChoiceChanged, font, showFont);
    showFont();

    auto* size = new PointSizeField({8, 48, 1}, QStringLiteral("Text box font size"));
    size->setObjectName(QStringLiteral("fontSize"));
    connect(size, &PointSizeField::committed, m_toolState.get(), &ToolState::setFontSize);
    const auto showSize = [this, size] { size->setValue(m_toolState->fontSize()); };
    connect(m_toolState.get(), &ToolState::fontSizeChanged, size, showSize);
    showSize();

    m_fontGroup = new ToolbarGroup(QStringLiteral("Font"), spacing);
    m_fontGroup->addWidget(font);
    m_fontGroup->addWidget(size);
    addWidget(m_fontGroup);
}

void OptionsGroup::makeStrokeWidth() {
    m_strokeWidth = new PointSizeField({1, 30, 1}, QStringLiteral("Stroke width"));
    m_strokeWidth->setObjectName(QStringLiteral("strokeWidth"));
    m_strokeWidth->setSymbol(QStringLiteral("lineweight"));
    connect(m_strokeWidth, &PointSizeField::committed, m_toolState.get(), &ToolState::setLineWidth);
    const auto showWidth = [this] { m_strokeWidth->setValue(m_toolState->lineWidth()); };
    connect(m_toolState.get(), &ToolState::lineWidthChanged, m_strokeWidth, showWidth);
    showWidth();
    addWidget(m_strokeWidth);
}

void OptionsGroup::makeLineEndButton() {
    m_lineEnd = new ToolbarButton;
    m_lineEnd->setObjectName(QStringLiteral("lineEndStyleButton"));
    m_lineEnd->setAccessibleName(QStringLiteral("Line end style"));
    m_lineEnd->setToolTip(QStringLiteral("Line end style"));
    m_lineEnd->setIconSize(LineStylePreview::size);
    connect(m_lineEnd, &ToolbarButton::clicked, this, [this] { Q_EMIT lineEndStylesRequested(m_lineEnd); });
    connect(m_toolState.get(), &ToolState::lineEndStyleChanged, this, &OptionsGroup::showLineEndStyle);
    showLineEndStyle();
    addWidget(m_lineEnd);
}

void OptionsGroup::showLineEndStyle() {
    m_lineEnd->setIcon(LineStylePreview::icon(m_toolState->lineEndStyle()));
    m_lineEnd->setAccessibleDescription(info(m_toolState->lineEndStyle()).title);
}

void OptionsGroup::makeEraserGroup() {
    auto* size = new PointSizeField({4, 100, 2}, QStringLiteral("Eraser size"));
    size->setObjectName(QStringLiteral("eraserSize"));
    size->setSymbol(QStringLiteral("circle"));
    connect(size, &PointSizeField::committed, m_toolState.get(), &ToolState::setEraserSize);
    const auto showSize = [this, size] { size->setValue(m_toolState->eraserSize()); };
    connect(m_toolState.get(), &ToolState::eraserSizeChanged, size, showSize);
    showSize();

    QStringList titles;
    for (const EraserModeInfo& info : allEraserModes())
        titles << info.title;
    auto* mode = new SegmentedChoice(QStringLiteral("Eraser mode"), eraserModeHelpText(), titles);
    mode->setObjectName(QStringLiteral("eraserMode"));
    connect(mode, &SegmentedChoice::chosen, m_toolState.get(),
            [this](int index) { m_toolState->setEraserMode(static_cast<EraserMode>(index)); });
    const auto showMode = [this, mode] { mode->setCurrent(static_cast<int>(m_toolState->eraserMode())); };
    connect(m_toolState.get(), &ToolState::eraserModeChanged, mode, showMode);
    showMode();

    m_eraserGroup = new ToolbarGroup(QStringLiteral("Eraser"), spacing);
    m_eraserGroup->addWidget(size);
    m_eraserGroup->addWidget(mode);
    addWidget(m_eraserGroup);
}

void OptionsGroup::makeFormGroup() {
    QStringList titles;
    for (const FormFieldModeInfo& info : allFormFieldModes())
        titles << info.title;
    m_formGroup = new SegmentedChoice(QStringLiteral("Kind of form field"), formFieldModeHelpText(), titles);
    m_formGroup->setObjectName(QStringLiteral("formFieldMode"));
    connect(m_formGroup, &SegmentedChoice::chosen, m_toolState.get(),
            [this](int index) { m_toolState->setFormFieldMode(static_cast<FormFieldMode>(index)); });
    const auto showMode = [this] { m_formGroup->setCurrent(static_cast<int>(m_toolState->formFieldMode())); };
    connect(m_toolState.get(), &ToolState::formFieldModeChanged, m_formGroup, showMode);
    showMode();
    addWidget(m_formGroup);
}

void OptionsGroup::showOptions() {
    const AnnotationTool tool = m_toolState->tool();
    const bool drawsInColor = tool != AnnotationTool::eraser && tool != AnnotationTool::form;
    m_colors->setVisible(drawsInColor);
    m_fontGroup->setVisible(tool == AnnotationTool::textBox);
    m_strokeWidth->setVisible(drawsInColor && tool != AnnotationTool::textBox);
    m_lineEnd->setVisible(tool == AnnotationTool::line);
    m_eraserGroup->setVisible(tool == AnnotationTool::eraser);
    m_formGroup->setVisible(tool == AnnotationTool::form);
}

QSize OptionsGroup::sizeHint() const {
    const auto together = [](std::initializer_list<const QWidget*> widgets) {
        QSize size(-spacing, 0);
        for (const QWidget* widget : widgets) {
            const int width = std::min(widget->sizeHint().width(), widget->maximumWidth());
            size += QSize(std::max(width, widget->minimumWidth()) + spacing, 0);
            size.setHeight(std::max(size.height(), widget->sizeHint().height()));
        }
        return size;
    };
    return together({m_colors, m_fontGroup})
        .expandedTo(together({m_colors, m_strokeWidth, m_lineEnd}))
        .expandedTo(together({m_eraserGroup}))
        .expandedTo(together({m_formGroup}));
}

QSize OptionsGroup::minimumSizeHint() const {
    return sizeHint();
}
