#pragma once

#include "AnnotationTool.h"
#include "MarkupAction.h"

#include <QList>
#include <QObject>

#include <memory>

class QAction;
class ToolState;

/// The commands of the tools, of markup and of editing page text, which menus and toolbar share: a QAction each, with
/// its keys, marked while it is what the window's `ToolState` says. Triggering one only tells of it; whoever listens
/// changes the state.
class ToolActions : public QObject {
    Q_OBJECT

public:
    /// For a window that shows no document `toolState` is null, and every command is disabled.
    explicit ToolActions(std::shared_ptr<ToolState> toolState, QObject* parent = nullptr);
    ~ToolActions() override;

    /// In the order of `allAnnotationTools()`.
    [[nodiscard]] const QList<QAction*>& tools() const { return m_tools; }
    /// In the order of `allMarkupActions()`.
    [[nodiscard]] const QList<QAction*>& markup() const { return m_markup; }
    [[nodiscard]] QAction* editText() const { return m_editText; }

Q_SIGNALS:
    /// Also when it is the present tool.
    void toolChosen(AnnotationTool tool);
    void markupChosen(MarkupAction action);
    void editTextChosen();

private:
    QAction* makeAction(const QString& name, const QString& text, const QString& symbolName);
    void makeToolActions();
    void makeMarkupActions();
    void update();

    std::shared_ptr<ToolState> m_toolState;
    QList<QAction*> m_tools;
    QList<QAction*> m_markup;
    QAction* m_editText;
};
