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
#include <span>

static constexpr int spacing = 6;

/// A size of the tool state and the field that shows it.
struct OptionsGroup::SizeOption {
    QString objectName;
    QString name; ///< for people
    PointSizeField::Range range;
    QString symbolName; ///< empty for none
    double (ToolState::*get)() const;
    void (ToolState::*set)(double);
    void (ToolState::*changed)();
};

/// One of a few modes of the tool state; `titles` are in the order of the enumeration.
template <typename Mode>
struct OptionsGroup::ModeOption {
    QString objectName;
    QString name; ///< for people
    QString helpText;
    QStringList titles;
    Mode (ToolState::*get)() const;
    void (ToolState::*set)(Mode);
    void (ToolState::*changed)();
};

template <typename Row>
static QStringList titlesOf(std::span<const Row> rows) {
    QStringList titles;
    for (const Row& row : rows)
        titles << row.title;
    return titles;
}

OptionsGroup::OptionsGroup(std::shared_ptr<ToolState> toolState, QWidget* parent)
    : ToolbarGroup(QStringLiteral("Options"), spacing, parent), m_toolState(std::move(toolState)),
      m_colors(new ColorGroup(m_toolState)) {
    addWidget(m_colors);
    makeOptions();
    addStretch();
    connect(m_toolState.get(), &ToolState::toolChanged, this, &OptionsGroup::showOptions);
    showOptions();
}

OptionsGroup::~OptionsGroup() = default;

template <typename Control, typename Chosen, typename Changed, typename Take, typename Show>
void OptionsGroup::tie(Control* control, Chosen chosen, Changed changed, Take take, Show show) {
    ToolState* const state = m_toolState.get();
    connect(control, chosen, state, [state, take](auto value) { take(*state, value); });
    connect(state, changed, control, [state, control, show] { show(*control, *state); });
    show(*control, *m_toolState);
}

PointSizeField* OptionsGroup::makeSize(const SizeOption& option) {
    auto* field = new PointSizeField(option.range, option.name);
    field->setObjectName(option.objectName);
    if (!option.symbolName.isEmpty())
        field->setSymbol(option.symbolName);
    tie(
        field, &PointSizeField::committed, option.changed,
        [option](ToolState& state, double size) { (state.*option.set)(size); },
        [option](PointSizeField& shown, const ToolState& state) { shown.setValue((state.*option.get)()); });
    return field;
}

template <typename Mode>
SegmentedChoice* OptionsGroup::makeChoice(const ModeOption<Mode>& option) {
    auto* choice = new SegmentedChoice(option.name, option.helpText, option.titles);
    choice->setObjectName(option.objectName);
    tie(
        choice, &SegmentedChoice::chosen, option.changed,
        [option](ToolState& state, int index) { (state.*option.set)(static_cast<Mode>(index)); },
        [option](SegmentedChoice& shown, const ToolState& state) {
            shown.setCurrent(static_cast<int>((state.*option.get)()));
        });
    return choice;
}

ToolbarGroup* OptionsGroup::addGroup(const QString& name, std::initializer_list<QWidget*> widgets) {
    auto* group = new ToolbarGroup(name, spacing);
    for (QWidget* widget : widgets)
        group->addWidget(widget);
    addWidget(group);
    return group;
}

QWidget* OptionsGroup::makeFontChoice() {
    auto* font = new QComboBox;
    font->setObjectName(QStringLiteral("fontChoice"));
    font->setAccessibleName(QStringLiteral("Text box font"));
    font->setToolTip(QStringLiteral("Text box font"));
    for (const AnnotationFontInfo& info : allAnnotationFonts()) {
        font->addItem(info.title);
        font->setItemData(static_cast<int>(info.font), platformFont(info.font, font->font().pointSizeF()),
                          Qt::FontRole);
    }
    tie(
        font, &QComboBox::activated, &ToolState::fontChoiceChanged,
        [](ToolState& state, int index) { state.setFontChoice(static_cast<AnnotationFont>(index)); },
        [](QComboBox& shown, const ToolState& state) { shown.setCurrentIndex(static_cast<int>(state.fontChoice())); });
    return font;
}

void OptionsGroup::makeLineEndButton() {
    m_lineEnd = new ToolbarButton;
    m_lineEnd->setObjectName(QStringLiteral("lineEndStyleButton"));
    m_lineEnd->setAccessibleName(QStringLiteral("Line end style"));
    m_lineEnd->setToolTip(QStringLiteral("Line end style"));
    m_lineEnd->setIconSize(LineStylePreview::size);
    connect(m_lineEnd, &ToolbarButton::clicked, this, [this] { Q_EMIT lineEndStylesRequested(m_lineEnd); });
    const auto show = [this] {
        m_lineEnd->setIcon(LineStylePreview::icon(m_toolState->lineEndStyle()));
        m_lineEnd->setAccessibleDescription(info(m_toolState->lineEndStyle()).title);
    };
    connect(m_toolState.get(), &ToolState::lineEndStyleChanged, m_lineEnd, show);
    show();
    addWidget(m_lineEnd);
}

void OptionsGroup::makeOptions() {
    const SizeOption fontSize{
        QStringLiteral("fontSize"), QStringLiteral("Text box font size"), {8, 48, 1}, {}, &ToolState::fontSize,
        &ToolState::setFontSize,    &ToolState::fontSizeChanged};
    const SizeOption strokeWidth{
        QStringLiteral("strokeWidth"), QStringLiteral("Stroke width"), {1, 30, 1},
        QStringLiteral("lineweight"),  &ToolState::lineWidth,          &ToolState::setLineWidth,
        &ToolState::lineWidthChanged};
    const SizeOption eraserSize{QStringLiteral("eraserSize"), QStringLiteral("Eraser size"), {4, 100, 2},
                                QStringLiteral("circle"),     &ToolState::eraserSize,        &ToolState::setEraserSize,
                                &ToolState::eraserSizeChanged};
    const ModeOption<EraserMode> eraserMode{QStringLiteral("eraserMode"), QStringLiteral("Eraser mode"),
                                            eraserModeHelpText(),         titlesOf(allEraserModes()),
                                            &ToolState::eraserMode,       &ToolState::setEraserMode,
                                            &ToolState::eraserModeChanged};
    const ModeOption<FormFieldMode> fieldMode{QStringLiteral("formFieldMode"), QStringLiteral("Kind of form field"),
                                              formFieldModeHelpText(),         titlesOf(allFormFieldModes()),
                                              &ToolState::formFieldMode,       &ToolState::setFormFieldMode,
                                              &ToolState::formFieldModeChanged};
    m_fontGroup = addGroup(QStringLiteral("Font"), {makeFontChoice(), makeSize(fontSize)});
    m_strokeWidth = makeSize(strokeWidth);
    addWidget(m_strokeWidth);
    makeLineEndButton();
    m_eraserGroup = addGroup(QStringLiteral("Eraser"), {makeSize(eraserSize), makeChoice(eraserMode)});
    m_formGroup = makeChoice(fieldMode);
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
