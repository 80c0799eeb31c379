#pragma once

#include "BackgroundTask.h"
#include "RedactionApplier.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

class PDFEditorDocument;
class QAction;
class QProgressDialog;
class QWidget;

/// The command that burns in what redaction markers cover: visible while there are some, with progress and Cancel where
/// several pages are to be drawn. Cancelled, or gone with its window, it leaves the document as it was.
class RedactionCommand : public QObject {
public:
    /// `done` is told when all is over, whether or not a page was replaced. `window` is where progress is shown, and
    /// owns the command.
    RedactionCommand(QAction& action, std::shared_ptr<PDFEditorDocument> document, std::function<void()> done,
                     QWidget* window);

    /// Does nothing while it runs.
    void run();
    /// Looks whether there are markers as soon as nothing has changed for a moment: neither a stroke that is drawn nor
    /// scrolling waits for that. Files that weren't searched yet are, beside everything else.
    void update() { m_changed.start(); }

private:
    void look();
    void step();
    void finish();

    QAction& m_action;
    const std::shared_ptr<PDFEditorDocument> m_document;
    const std::function<void()> m_done;
    QWidget* m_window;
    QTimer m_changed;
    QTimer m_steps;
    std::unique_ptr<RedactionApplier::Run> m_run; ///< null unless running
    QProgressDialog* m_progress = nullptr;        ///< null unless several pages are drawn
    bool m_isSearching = false;
    BackgroundTask m_search; // last: it ends first
};
