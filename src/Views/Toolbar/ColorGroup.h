#pragma once

#include "ToolbarGroup.h"

#include <memory>
#include <vector>

class ColorSwatch;
class ToolState;

/// The swatches for the colour of annotations, and a well for any other colour.
class ColorGroup : public ToolbarGroup {
    Q_OBJECT

public:
    explicit ColorGroup(std::shared_ptr<ToolState> toolState, QWidget* parent = nullptr);
    ~ColorGroup() override;

private:
    void chooseCustomColor();
    void showColor();

    std::shared_ptr<ToolState> m_toolState;
    std::vector<ColorSwatch*> m_swatches;
    QAction* m_customColor;
};
