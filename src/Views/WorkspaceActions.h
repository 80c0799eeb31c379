#pragma once

#include <QObject>
#include <QPointer>

#include <array>

class AnnotatingPDFView;
class QAction;

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
    };

    /// What "Zoom In" and "Zoom Out" add to the scale factor and take from it.
    static constexpr double zoomStep = 0.15;

    /// For a window that shows no document `view` is null, and every command is disabled. Most of the actions are the
    /// view's own.
    explicit WorkspaceActions(AnnotatingPDFView* view, QObject* parent = nullptr);
    ~WorkspaceActions() override;

    [[nodiscard]] QAction* action(Command command) const;

private:
    void zoomBy(double step);
    void updateZoomActions();

    QPointer<AnnotatingPDFView> m_view;
    std::array<QPointer<QAction>, 11> m_actions;
};
