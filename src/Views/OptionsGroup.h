#pragma once

#include "ToolbarGroup.h"

#include <memory>

class ColorGroup;
class PointSizeField;
class SegmentedChoice;
class ToolState;

/// What can be chosen for the present tool: its colour, widths and modes. As wide as its widest content, so that the
/// groups after it stay where they are when the tool changes.
class OptionsGroup : public ToolbarGroup {
    Q_OBJECT

public:
    explicit OptionsGroup(std::shared_ptr<ToolState> toolState, QWidget* parent = nullptr);
    ~OptionsGroup() override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The button for the end of lines was pressed.
    void lineEndStylesRequested(QWidget* button);

private:
    void makeFontGroup();
    void makeStrokeWidth();
    void makeLineEndButton();
    void makeEraserGroup();
    void makeFormGroup();
    void showOptions();
    void showLineEndStyle();

    std::shared_ptr<ToolState> m_toolState;
    ColorGroup* m_colors;
    ToolbarGroup* m_fontGroup = nullptr;
    PointSizeField* m_strokeWidth = nullptr;
    ToolbarButton* m_lineEnd = nullptr;
    ToolbarGroup* m_eraserGroup = nullptr;
    SegmentedChoice* m_formGroup = nullptr;
};
