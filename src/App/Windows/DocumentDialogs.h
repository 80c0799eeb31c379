#pragma once

#include "DocumentPresenter.h"
#include "UnsavedDocumentsDialog.h"

#include <QDialog>
#include <QPointer>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

/// The questions and messages of the program. `parent` is the window that they belong to; null where there is none.
/// Those that return an answer block, and give the one of Cancel when
/// `parent` goes meanwhile; the others return at once. Main thread only.
class DocumentDialogs {
public:
    struct SaveAllAnswer {
        DocumentPresenter::SaveAnswer answer = DocumentPresenter::SaveAnswer::Cancel;
        std::vector<bool> checked; ///< for each document: whether to save it
    };

    using Answered = std::function<void(bool accepted)>;

    virtual ~DocumentDialogs();

    /// Whether to save the changes of the document with that name, which is about to be closed.
    virtual DocumentPresenter::SaveAnswer askToSave(QWidget* parent, const QString& documentName);

    /// The same once for several documents.
    virtual SaveAllAnswer askToSaveAll(QWidget* parent, const std::vector<UnsavedDocumentsDialog::Entry>& documents);

    /// Whether to save over a file that another program has changed.
    virtual DocumentPresenter::OverwriteAnswer askAboutChangedFile(QWidget* parent, const QString& documentName);

    /// Whether to save although a digital signature doesn't survive that.
    virtual DocumentPresenter::OverwriteAnswer askAboutSignatures(QWidget* parent, const QString& documentName);

    /// Whether to give up the changes of a document for those that another program has made to its file.
    virtual bool askToReload(QWidget* parent, const QString& documentName);

    /// Whether to give up the changes of a document.
    virtual bool askToRevert(QWidget* parent, const QString& documentName);

    /// Tells that a document couldn't be saved; whether it is to be saved elsewhere.
    virtual bool offerSaveAs(QWidget* parent, const QString& title, const QString& sentence);

    /// Where to save to, starting from `suggestedPath`; whether a file that is there may be replaced has been asked.
    virtual std::optional<QString> chooseSaveLocation(QWidget* parent, const QString& suggestedPath);

    virtual std::optional<QString> askPassword(QWidget* parent);

    /// Whether Quillo should become the default viewer. Returns at once; `answered` isn't called when `parent` goes
    /// first.
    virtual void askToBecomeDefault(QWidget* parent, Answered answered);

    /// The same without being asked for: takes neither the keyboard from what the person is doing nor a key that was
    /// meant for it, and stays when windows go. Returns at once; `answered` isn't called when the program ends first.
    virtual void offerToBecomeDefault(Answered answered);

    /// Tells that the program ends when the documents with these names are printed; true for the one who won't wait,
    /// false for the one who'd rather stay. Returns at once; whoever called deletes the message when it isn't true any
    /// more.
    virtual QDialog* presentPrinting(QWidget* parent, const QStringList& documentNames, Answered quitsNow);

    virtual void presentMessage(QWidget* parent, const QString& title, const QString& sentence);
    virtual void presentError(QWidget* parent, const QString& title, const QString& sentence);

private:
    QPointer<QDialog> m_offer;
};
