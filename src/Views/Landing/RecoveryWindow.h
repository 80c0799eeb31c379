#pragma once

#include "LostDocument.h"

#include <QDialog>

#include <vector>

class QPushButton;
class QVBoxLayout;
class RecoveryRow;

/// Offers lost documents to be recovered or deleted, one by one or all. It does neither itself, and is closed when
/// none is left. Closing it decides nothing. Main thread only.
class RecoveryWindow : public QDialog {
    Q_OBJECT

public:
    explicit RecoveryWindow(const std::vector<LostDocument>& documents, QWidget* parent = nullptr);
    ~RecoveryWindow() override;

    /// The document was recovered or deleted.
    void removeDocument(const QString& id);
    /// The document can't be recovered, as `sentence` says.
    void showFailure(const QString& id, const QString& sentence);

Q_SIGNALS:
    /// Comes once for a document, which waits for one of the two operations above.
    void recoverRequested(const QString& id);
    /// The user has been asked whether it may go.
    void deleteRequested(const QString& id);

private:
    QWidget* makeHeader() const;
    QWidget* makeButtons();
    QWidget* makeList(const std::vector<LostDocument>& documents);
    void recover(RecoveryRow* row);
    void recoverAll();
    void askToDelete(const QStringList& ids);
    [[nodiscard]] RecoveryRow* row(const QString& id) const;
    void updateButtons();

    std::vector<RecoveryRow*> m_rows;
    QPushButton* m_recoverAll;
    QPushButton* m_deleteAll;
};
