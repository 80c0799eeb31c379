#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <array>
#include <memory>

class AnnotatingPDFView;
class QAction;
class ToolActions;
class ToolState;

/// The commands of a workspace that menus and toolbar share: a QAction each, with its keys, enabled only while it can
/// do something.
class WorkspaceActions : public QObject {
    Q_OBJECT

public:
    enum class Command {
        copy,
        selectAll,
        zoomIn,
        zoomOut,
        zoomToFit,
        previousPage,
        nextPage,
        firstPage,
        lastPage,
        back,
        forward,
        print,           ///< the workspace connects it
        toggleSidebar,   ///< shows the page sidebar, or hides it; the workspace connects it
        ocrPage,         ///< reads the text of the page that is shown; the workspace connects it
        applyRedactions, ///< visible while pages have markers of redactions; the workspace connects it
        askAssistant,    ///< shows the assistant, or hides it; the workspace connects it
    };

    /// What "Zoom In" and "Zoom Out" add to the scale factor and take from it.
    static constexpr double zoomStep = 0.15;

    /// For a window that shows no document `view` and `toolState` are null, and every command is disabled. Most of the
    /// actions are the view's own.
    WorkspaceActions(AnnotatingPDFView* view, std::shared_ptr<ToolState> toolState, QObject* parent = nullptr);
    ~WorkspaceActions() override;

    [[nodiscard]] QAction* action(Command command) const;
    [[nodiscard]] ToolActions& tools() const { return *m_tools; }
    /// The scales to choose from, "50%" to "400%" and the whole page; that of the view is checked.
    [[nodiscard]] const QList<QAction*>& scales() const { return m_scales; }

protected:
    /// Sees the viewport change its size.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addScales();
    [[nodiscard]] double scaleOfWholePage() const;
    void zoomBy(double step);
    void updateZoomActions();

    QPointer<AnnotatingPDFView> m_view;
    ToolActions* m_tools;
    std::array<QPointer<QAction>, 16> m_actions;
    QList<QAction*> m_scales; ///< the whole page is the last
};
