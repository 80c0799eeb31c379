#include "ToolState.h"

#include "SignatureStore.h"

ToolState::ToolState(UserDefaults* defaults, QObject* parent)
    : QObject(parent), m_signatureStore(std::make_shared<SignatureStore>(defaults)) {}

ToolState::~ToolState() = default;

template <typename T>
void ToolState::set(T ToolState::*field, const T& value, void (ToolState::*changed)()) {
    if (this->*field == value)
        return;
    this->*field = value;
    Q_EMIT(this->*changed)();
}

void ToolState::setTool(AnnotationTool tool) {
    set(&ToolState::m_tool, tool, &ToolState::toolChanged);
}

void ToolState::setColor(const QColor& color) {
    set(&ToolState::m_color, color, &ToolState::colorChanged);
}

void ToolState::setLineWidth(double width) {
    set(&ToolState::m_lineWidth, width, &ToolState::lineWidthChanged);
}

void ToolState::setFontSize(double size) {
    set(&ToolState::m_fontSize, size, &ToolState::fontSizeChanged);
}

void ToolState::setFontChoice(AnnotationFont font) {
    set(&ToolState::m_fontChoice, font, &ToolState::fontChoiceChanged);
}

void ToolState::setEraserSize(double size) {
    set(&ToolState::m_eraserSize, size, &ToolState::eraserSizeChanged);
}

void ToolState::setEraserMode(EraserMode mode) {
    set(&ToolState::m_eraserMode, mode, &ToolState::eraserModeChanged);
}

void ToolState::setFormFieldMode(FormFieldMode mode) {
    set(&ToolState::m_formFieldMode, mode, &ToolState::formFieldModeChanged);
}

void ToolState::setLineEndStyle(PDFLineStyle style) {
    set(&ToolState::m_lineEndStyle, style, &ToolState::lineEndStyleChanged);
}

void ToolState::setActiveMarkupMode(std::optional<MarkupAction> mode) {
    set(&ToolState::m_activeMarkupMode, mode, &ToolState::activeMarkupModeChanged);
}

void ToolState::setTextEditingModeEnabled(bool enabled) {
    set(&ToolState::m_isTextEditingModeEnabled, enabled, &ToolState::textEditingModeEnabledChanged);
}
