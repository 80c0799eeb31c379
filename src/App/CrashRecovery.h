#pragma once

#include "DocumentRecovery.h"
#include "LostDocuments.h"

#include <QObject>

#include <memory>
#include <optional>

class PDFEditorWorkspaceView;
class RecoveryWindow;
class UserDefaults;
class WindowPresenter;

/// Keeps unsaved changes safe while the program runs, and offers at the start what an earlier process lost. Main thread
/// only.
class CrashRecovery : public QObject {
    Q_OBJECT

public:
    /// All must outlive this.
    CrashRecovery(DocumentController& controller, WindowPresenter& presenter, UserDefaults& defaults,
                  QObject* parent = nullptr);
    ~CrashRecovery() override;

    /// Shows a window when there is something to offer.
    void offerLostDocuments();

    [[nodiscard]] DocumentRecovery& recovery() { return m_recovery; }
    /// Null while nothing is offered.
    [[nodiscard]] RecoveryWindow* window() const { return m_window.get(); }

private:
    void recover(const LostDocument& lost);
    void finishRecovery(const LostDocument& lost, const std::shared_ptr<PDFEditorDocument>& document,
                        const QString& error);
    void tell(const QString& sentence);
    /// Null while the document isn't shown, or is locked.
    [[nodiscard]] PDFEditorWorkspaceView* workspace(const PDFEditorDocument& document) const;

    WindowPresenter& m_presenter;
    DocumentRecovery m_recovery;
    LostDocuments m_lostDocuments;
    std::unique_ptr<RecoveryWindow> m_window;
};
