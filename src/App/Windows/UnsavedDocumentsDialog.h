#pragma once

#include "DocumentPresenter.h"

#include <QDialog>

#include <vector>

class QListWidget;
class QPushButton;

/// Asks once about several documents with unsaved changes, each with a check mark: what is checked is saved.
class UnsavedDocumentsDialog : public QDialog {
    Q_OBJECT

public:
    struct Entry {
        QString name;
        QString place; ///< tells documents of one name apart
    };

    explicit UnsavedDocumentsDialog(const std::vector<Entry>& documents, QWidget* parent = nullptr);
    ~UnsavedDocumentsDialog() override;

    /// `Cancel` until the user has chosen.
    [[nodiscard]] DocumentPresenter::SaveAnswer answer() const { return m_answer; }
    /// For each document, in their order.
    [[nodiscard]] std::vector<bool> checked() const;

private:
    void fillList(const std::vector<Entry>& documents);
    void updateSaveButton();
    void end(DocumentPresenter::SaveAnswer answer);

    QListWidget* m_list;
    QPushButton* m_save;
    DocumentPresenter::SaveAnswer m_answer = DocumentPresenter::SaveAnswer::Cancel;
};
