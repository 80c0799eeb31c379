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
    struct SizeOption;
    template <typename Mode>
    struct ModeOption;

    /// `take` gives the state what was chosen in `control`, `show` gives `control` what the state has: now, and
    /// whenever the state says `changed`.
    template <typename Control, typename Chosen, typename Changed, typename Take, typename Show>
    void tie(Control* control, Chosen chosen, Changed changed, Take take, Show show);

    void makeOptions();
    QWidget* makeFontChoice();
    PointSizeField* makeSize(const SizeOption& option);
    template <typename Mode>
    SegmentedChoice* makeChoice(const ModeOption<Mode>& option);
    void makeLineEndButton();
    ToolbarGroup* addGroup(const QString& name, std::initializer_list<QWidget*> widgets);
    void showOptions();

    std::shared_ptr<ToolState> m_toolState;
    ColorGroup* m_colors;
    ToolbarGroup* m_fontGroup = nullptr;
    PointSizeField* m_strokeWidth = nullptr;
    ToolbarButton* m_lineEnd = nullptr;
    ToolbarGroup* m_eraserGroup = nullptr;
    SegmentedChoice* m_formGroup = nullptr;
};
