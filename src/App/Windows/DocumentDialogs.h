#pragma once

#include "DocumentPresenter.h"
#include "UnsavedDocumentsDialog.h"

#include <QString>

#include <optional>
#include <vector>

class QWidget;

/// The questions and messages of the program. `parent` is the window that they belong to; null where there is none.
/// The asking ones block; the telling ones return at once. Main thread only.
class DocumentDialogs {
public:
    struct SaveAllAnswer {
        DocumentPresenter::SaveAnswer answer = DocumentPresenter::SaveAnswer::Cancel;
        std::vector<bool> checked; ///< for each document: whether to save it
    };

    virtual ~DocumentDialogs();

    /// Whether to save the changes of the document with that name, which is about to be closed.
    virtual DocumentPresenter::SaveAnswer askToSave(QWidget* parent, const QString& documentName);

    /// The same once for several documents.
    virtual SaveAllAnswer askToSaveAll(QWidget* parent, const std::vector<UnsavedDocumentsDialog::Entry>& documents);

    /// Whether to save over a file that another program has changed.
    virtual DocumentPresenter::ChangedFileAnswer askAboutChangedFile(QWidget* parent, const QString& documentName);

    /// Whether to give up the changes of a document for those that another program has made to its file.
    virtual bool askToReload(QWidget* parent, const QString& documentName);

    /// Whether to give up the changes of a document.
    virtual bool askToRevert(QWidget* parent, const QString& documentName);

    /// Tells that a document couldn't be saved; whether it is to be saved elsewhere.
    virtual bool offerSaveAs(QWidget* parent, const QString& title, const QString& sentence);

    /// Where to save to, starting from `suggestedPath`; whether a file that is there may be replaced has been asked.
    virtual std::optional<QString> chooseSaveLocation(QWidget* parent, const QString& suggestedPath);

    virtual std::optional<QString> askPassword(QWidget* parent);

    /// Whether Quillo should become the default viewer.
    virtual bool askToBecomeDefault(QWidget* parent);

    virtual void presentMessage(QWidget* parent, const QString& title, const QString& sentence);
    virtual void presentError(QWidget* parent, const QString& title, const QString& sentence);
};
