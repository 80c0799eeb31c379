#pragma once

#include "PrintingWait.h"

#include <QObject>

#include <chrono>

class AppDelegate;
class DocumentController;

/// The ways in which the program ends: by its own command, with the desktop's session, and at a signal. Main thread
/// only.
class SessionEnd : public QObject {
    Q_OBJECT

public:
    /// How long slow disks may take when the system wants the program to end.
    static constexpr std::chrono::seconds limit{10};

    /// The arguments must outlive the object. From here on the desktop's session manager is answered.
    SessionEnd(DocumentController& controller, AppDelegate& delegate, DocumentDialogs& dialogs,
               QObject* parent = nullptr);
    ~SessionEnd() override;

    /// Waits for what is being printed, closes all documents, asking once what becomes of unsaved changes, and ends the
    /// event loop when all is saved. Does nothing when the user cancels or a document can't be saved.
    void terminate();

    /// Ends the event loop without asking anything, as the system wants it: at most `limit` later. Documents that are
    /// being saved or printed get that long; whatever else is unsaved is up to the recovery of lost documents.
    void endNow();

    /// What the desktop wants of a program before the session ends: asks what becomes of unsaved changes when that is
    /// allowed, and returns when they are saved, but waits for slow disks no longer than `limit`. False when the user
    /// cancelled. Nothing is closed: the session may go on.
    [[nodiscard]] bool commit(bool mayAsk);

protected:
    /// Sees the desktop end the program after `commit`: the windows need not ask again.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void closeAll();
    void connectSessionManager();
    [[nodiscard]] bool hasUnsavedDocuments() const;

    DocumentController& m_controller;
    AppDelegate& m_delegate;
    PrintingWait m_printing;
    bool m_isTerminating = false;
    bool m_isCommitted = false;
    bool m_isEnding = false;
};
