#pragma once

#include <QObject>

class DefaultPDFHandler;
class DocumentDialogs;

/// "Make Quillo the Default PDF Viewer…": asks, and tells what came of it. Main thread only.
class DefaultViewerCommand : public QObject {
    Q_OBJECT

public:
    /// The arguments must outlive the object.
    DefaultViewerCommand(DefaultPDFHandler& handler, DocumentDialogs& dialogs, QObject* parent = nullptr);
    ~DefaultViewerCommand() override;

    /// Returns at once: the desktop takes its time to answer.
    void run();

private:
    void ask();

    DefaultPDFHandler& m_handler;
    DocumentDialogs& m_dialogs;
};
