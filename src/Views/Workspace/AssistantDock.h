#pragma once

#include <QWidget>

#include <functional>

class AssistantPanel;
class AssistantResizeHandle;
class QVariantAnimation;

/// The place of the assistant's panel at the trailing edge of a window, with the handle that sets its width. The panel
/// is made when it is first shown; it slides in and out.
class AssistantDock : public QWidget {
    Q_OBJECT

public:
    static constexpr qreal usualPanelWidth = 420;
    static constexpr qreal minPanelWidth = 260;
    static constexpr qreal maxPanelWidth = 640;

    explicit AssistantDock(std::function<AssistantPanel*()> makePanel, QWidget* parent = nullptr);
    ~AssistantDock() override;

    [[nodiscard]] bool isPanelShown() const { return m_isPanelShown; }
    /// The keyboard goes to the panel when it appears.
    void setPanelShown(bool shown);

    /// Null before the panel was first shown.
    [[nodiscard]] AssistantPanel* panel() const { return m_panel; }

    /// What the reader set, in pixels; where there is less room the panel is narrower.
    [[nodiscard]] qreal panelWidth() const;
    /// Held within the limits.
    void setPanelWidth(qreal width);
    /// Leaves this much to what stands beside it, as long as the panel keeps its smallest width.
    void setAvailableWidth(int width);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void panelShownChanged(bool shown);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int fullWidth() const;
    void updateWidth();

    std::function<AssistantPanel*()> m_makePanel;
    AssistantResizeHandle* m_handle;
    AssistantPanel* m_panel = nullptr;
    QVariantAnimation* m_panelAnimation; ///< from 0, hidden, to 1
    int m_availableWidth = QWIDGETSIZE_MAX;
    bool m_isPanelShown = false;
};
