#include "DocumentController.h"

#include "Document.h"
#include "DocumentSnapshot.h"
#include "FileStamp.h"
#include "QuilloAssert.h"
#include "UndoManager.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <exception>
#include <utility>

static QString couldNotBeSaved(const QString& name) {
    return QStringLiteral("“%1” couldn't be saved.").arg(name);
}

static QString couldNotBeCopied(const QString& name) {
    return QStringLiteral("“%1” couldn't be duplicated.").arg(name);
}

void DocumentController::saveDocument(const std::shared_ptr<Document>& document, const Completion& completion) {
    if (isBeingAskedAbout(document)) {
        call(completion, false);
        return;
    }
    document->commitEditing();
    if (isSaving(*document)) {
        m_saver.whenSaved(*document, [this, document, completion](bool isSaved) {
            if (isSaved && document->isDocumentEdited())
                saveDocument(document, completion);
            else
                call(completion, isSaved);
        });
        return;
    }
    if (document->fileURL().isEmpty()) {
        saveDocumentAs(document, completion);
        return;
    }
    writeDocument(document, document->fileURL(), document->fileStamp(), SignatureCare::keep, completion);
}

void DocumentController::saveDocumentAs(const std::shared_ptr<Document>& document, SignatureCare care,
                                        const Completion& completion) {
    if (isBeingAskedAbout(document)) {
        call(completion, false);
        return;
    }
    document->commitEditing();
    auto question = noteQuestion({document});
    const std::optional<QString> path = m_presenter.chooseSaveLocation(document, document->suggestedFileName());
    question.reset();
    if (!path) {
        call(completion, false);
        return;
    }
    const QUrl url = QUrl::fromLocalFile(QFileInfo(*path).absoluteFilePath());
    const std::shared_ptr<Document> holder = holderOf(url);
    if (holder && holder != document) {
        m_presenter.presentError(couldNotBeSaved(url.fileName()),
                                 QStringLiteral("A file of this name is open in another window. Close that window "
                                                "first, or choose another name."));
        call(completion, false);
        return;
    }
    writeDocument(document, url, std::nullopt, care, completion);
}

/// Waits first for a save of the document that is under way, whatever comes of it.
void DocumentController::writeDocument(const std::shared_ptr<Document>& document, const QUrl& url,
                                       const std::optional<FileStamp>& expected, SignatureCare care,
                                       const Completion& completion) {
    if (isSaving(*document)) {
        m_saver.whenSaved(*document, [this, document, url, expected, care, completion](bool) {
            writeDocument(document, url, expected, care, completion);
        });
        return;
    }
    m_saver.save(document, url, expected, care,
                 [this, document, url, completion](const std::optional<DocumentError>& error) {
                     finishSave(document, url, error, completion);
                 });
}

void DocumentController::finishSave(const std::shared_ptr<Document>& document, const QUrl& url,
                                    const std::optional<DocumentError>& error, const Completion& completion) {
    if (!error) {
        noteNewRecentDocumentURL(url);
        Q_EMIT documentSaved(document);
        call(completion, true);
    } else if (error->changedFile() && url == document->fileURL()) {
        askAboutChangedFile(document, *error->changedFile(), completion);
    } else if (error->breaksSignatures()) {
        askAboutSignatures(document, url, completion);
    } else if (!error->isHelpedBySaveAs()) {
        m_presenter.presentError(couldNotBeSaved(url.fileName()), error->sentence());
        call(completion, false);
    } else {
        auto question = noteQuestion({document});
        const bool wantsSaveAs = m_presenter.offerSaveAs(document, couldNotBeSaved(url.fileName()), error->sentence());
        question.reset();
        if (wantsSaveAs)
            saveDocumentAs(document, completion);
        else
            call(completion, false);
    }
}

/// Another program has written the version with the stamp `found`.
void DocumentController::askAboutChangedFile(const std::shared_ptr<Document>& document, const FileStamp& found,
                                             const Completion& completion) {
    auto question = noteQuestion({document});
    const DocumentPresenter::OverwriteAnswer answer = m_presenter.askAboutChangedFile(document);
    question.reset();
    switch (answer) {
    case DocumentPresenter::OverwriteAnswer::Overwrite:
        writeDocument(document, document->fileURL(), found, SignatureCare::keep, completion);
        break;
    case DocumentPresenter::OverwriteAnswer::SaveAs:
        saveDocumentAs(document, completion);
        break;
    case DocumentPresenter::OverwriteAnswer::Cancel:
        call(completion, false);
        break;
    }
}

/// Writing the document to `url` would leave a signature of its file invalid.
void DocumentController::askAboutSignatures(const std::shared_ptr<Document>& document, const QUrl& url,
                                            const Completion& completion) {
    auto question = noteQuestion({document});
    const DocumentPresenter::OverwriteAnswer answer = m_presenter.askAboutSignatures(document);
    question.reset();
    switch (answer) {
    case DocumentPresenter::OverwriteAnswer::Overwrite:
        writeDocument(document, url, url == document->fileURL() ? document->fileStamp() : std::nullopt,
                      SignatureCare::giveUp, completion);
        break;
    case DocumentPresenter::OverwriteAnswer::SaveAs:
        saveDocumentAs(document, SignatureCare::giveUp, completion);
        break;
    case DocumentPresenter::OverwriteAnswer::Cancel:
        call(completion, false);
        break;
    }
}

QString DocumentController::nameOfCopy(const Document& document) const {
    static const QRegularExpression endOfCopies(QStringLiteral(" copy( \\d+)?$"));
    const QString name =
        document.fileURL().isEmpty() ? document.displayName() : QFileInfo(document.displayName()).completeBaseName();
    const QString firstName = QString(name).remove(endOfCopies) + QStringLiteral(" copy");
    const auto isTaken = [this](const QString& candidate) {
        return std::any_of(m_documents.begin(), m_documents.end(), [&candidate](const auto& each) {
            return QFileInfo(each->suggestedFileName()).completeBaseName() == candidate;
        });
    };
    QString copy = firstName;
    for (int number = 2; isTaken(copy); ++number)
        copy = QStringLiteral("%1 %2").arg(firstName, QString::number(number));
    return copy;
}

void DocumentController::duplicateDocument(const std::shared_ptr<Document>& document, const Completion& completion) {
    document->commitEditing();
    const QString name = document->displayName();
    const auto fail = [this, name, completion](const DocumentError& error) {
        m_presenter.presentError(couldNotBeCopied(name), error.sentence());
        call(completion, false);
    };
    std::shared_ptr<const DocumentSnapshot> snapshot;
    try {
        snapshot = document->snapshot(SignatureCare::giveUp);
    } catch (const std::exception& error) {
        fail(DocumentError::from(error));
        return;
    }
    const auto folder = std::make_shared<QTemporaryDir>(); // until the copy is read
    const QString path = folder->filePath(QStringLiteral("copy.") + document->fileNameExtension());
    m_copyWriter.write(snapshot, path, std::nullopt,
                       [this, document, folder, path, fail, completion](const auto& result) {
                           if (result.error) {
                               fail(*result.error);
                               return;
                           }
                           try {
                               openCopy(path, nameOfCopy(*document));
                           } catch (const std::exception& error) {
                               fail(DocumentError::from(error));
                               return;
                           }
                           call(completion, true);
                       });
}

void DocumentController::openCopy(const QString& path, const QString& name) {
    const std::shared_ptr<Document> copy = m_factory();
    QUILLO_ASSERT(copy, "a document factory must make a document");
    copy->read(QUrl::fromLocalFile(path));
    copy->setUntitledName(name);
    copy->undoManager()->removeAllActions();
    copy->undoManager()->markEdited();
    addDocument(copy);
    m_presenter.show(copy);
    setCurrentDocument(copy);
}

bool DocumentController::canRevertDocument(const Document& document) const {
    return !document.fileURL().isEmpty() && (document.isDocumentEdited() || document.isBeingTyped()) &&
           !isSaving(document) && !isBeingRead(document);
}

void DocumentController::revertDocument(const std::shared_ptr<Document>& document) {
    if (!canRevertDocument(*document) || isBeingAskedAbout(document))
        return;
    auto question = noteQuestion({document});
    const bool reverts = m_presenter.askToRevert(document);
    question.reset();
    if (!reverts || !canRevertDocument(*document))
        return;
    document->commitEditing(); // what is being typed goes with the other changes
    readAgain(document, [this, document](Rereading outcome, const QString& sentence) {
        if (outcome == Rereading::failed)
            m_presenter.presentError(QStringLiteral("“%1” couldn't be read again.").arg(document->displayName()),
                                     sentence);
        else if (outcome == Rereading::overtaken)
            m_presenter.presentNotice(
                document, QStringLiteral("“%1” was changed while its file was being read, and is left as it is.")
                              .arg(document->displayName()));
    });
}

void DocumentController::fileWasChanged(const std::shared_ptr<Document>& document, const FileStamp& stamp,
                                        bool mayBeUnfinished, const std::function<void()>& worthAnotherLook) {
    if (isSaving(*document) || isBeingRead(*document) || isBeingAskedAbout(document))
        return;
    if (document->hasUserChanges() || document->isBeingTyped()) {
        mayBeUnfinished = false; // one question is enough
        auto question = noteQuestion({document});
        const bool reloads = m_presenter.askToReload(document);
        question.reset();
        if (!reloads || !documentFor(document.get())) {
            document->keepInPlaceOf(stamp);
            return;
        }
        document->commitEditing(); // what is being typed goes with the other changes
    }
    const QString name = document->displayName();
    readAgain(document, [=, this](Rereading outcome, const QString& sentence) {
        if (outcome == Rereading::done) {
            m_presenter.presentNotice(document, QStringLiteral("“%1” was changed by another program.").arg(name));
        } else if (outcome == Rereading::overtaken || mayBeUnfinished) {
            worthAnotherLook();
        } else {
            document->setFileStamp(stamp); // until it changes again
            document->loseFile();
            m_presenter.presentNotice(
                document, QStringLiteral("“%1” was changed by another program and can't be read any more: %2")
                              .arg(name, sentence));
        }
    });
}
