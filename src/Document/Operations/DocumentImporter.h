#pragma once

#include "DocumentController.h"
#include "DocumentImport.h"

#include <QObject>
#include <QUrl>

#include <deque>
#include <functional>
#include <memory>

/// Opens files that aren't PDFs: turns them into PDFs in new temporary folders and opens these as untitled documents,
/// two at a time. Files are never changed. The PDFs go when the importer does. Main thread only.
class DocumentImporter : public QObject {
    Q_OBJECT

public:
    /// How many files are converted at once.
    static constexpr int mostAtOnce = 2;

    /// `controller` outlives it.
    explicit DocumentImporter(DocumentController& controller, QObject* parent = nullptr);
    /// Ends the conversions that are under way.
    ~DocumentImporter() override;

    /// Returns at once; the result shows up as a document or as a message. A PDF is opened as it is.
    void open(const QUrl& url, const DocumentController::OpenCompletion& completion = {});

    /// True while files are being converted or wait for that.
    [[nodiscard]] bool isConverting() const { return m_running > 0 || !m_waiting.empty(); }

private:
    struct Waiting {
        DocumentImport import;
        DocumentController::OpenCompletion completion;
    };
    class Workshop;

    void startNext();

    DocumentController& m_controller;
    std::shared_ptr<Workshop> m_workshop;
    std::deque<Waiting> m_waiting;
    int m_running = 0;
};
