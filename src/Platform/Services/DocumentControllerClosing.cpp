#include "DocumentController.h"

#include "Document.h"

#include <algorithm>
#include <iterator>
#include <utility>

static bool contains(const std::vector<std::shared_ptr<Document>>& documents,
                     const std::shared_ptr<Document>& document) {
    return std::count(documents.begin(), documents.end(), document) > 0;
}

void DocumentController::call(const Completion& completion, bool succeeded) {
    if (completion)
        completion(succeeded);
}

std::shared_ptr<void> DocumentController::noteQuestion(const Documents& documents) {
    Documents& inQuestion = m_documentsInQuestion;
    inQuestion.insert(inQuestion.end(), documents.begin(), documents.end());
    const auto end = [&inQuestion, documents](void*) {
        for (const std::shared_ptr<Document>& document : documents)
            inQuestion.erase(std::find(inQuestion.begin(), inQuestion.end(), document));
    };
    return {this, end};
}

bool DocumentController::isBeingAskedAbout(const std::shared_ptr<Document>& document) const {
    return contains(m_documentsInQuestion, document);
}

void DocumentController::closeDocument(const std::shared_ptr<Document>& document, const Completion& completion) {
    // A pointer of its own: the caller's may be an element of the list, or belong to a window that goes.
    const std::shared_ptr<Document> closing = documentFor(document.get());
    if (!closing) {
        call(completion, true);
        return;
    }
    if (isBeingAskedAbout(closing) || contains(m_documentsToBeClosed, closing)) {
        call(completion, false);
        return;
    }
    closing->commitEditing();
    const auto closeOnceSaved = [this, closing, completion](bool isSaved) {
        std::erase(m_documentsToBeClosed, closing);
        // It may have been changed while it was being saved, and then there is something to ask again.
        if (isSaved)
            closeDocument(closing, completion);
        else
            call(completion, false);
    };
    if (isSaving(*closing)) {
        m_documentsToBeClosed.push_back(closing);
        m_saver.whenSaved(*closing, closeOnceSaved);
        return;
    }
    if (closing->isDocumentEdited()) {
        auto question = noteQuestion({closing});
        const DocumentPresenter::SaveAnswer answer = m_presenter.askToSave(closing);
        question.reset();
        if (answer == DocumentPresenter::SaveAnswer::Save) {
            m_documentsToBeClosed.push_back(closing);
            saveDocument(closing, closeOnceSaved);
            return;
        }
        if (answer == DocumentPresenter::SaveAnswer::Cancel) {
            call(completion, false);
            return;
        }
    }
    removeDocument(closing);
    call(completion, true);
}

void DocumentController::closeAllDocuments(const Completion& completion) {
    const Documents closing = m_documents;
    saveAllDocuments([this, closing, completion](bool succeeded) {
        if (!succeeded) {
            call(completion, false);
            return;
        }
        m_openings.clear(); // the program ends
        for (const std::shared_ptr<Document>& document : closing)
            removeDocument(document);
        call(completion, m_documents.empty());
    });
}

void DocumentController::saveAllDocuments(const Completion& completion) {
    if (!m_documentsInQuestion.empty()) {
        call(completion, false);
        return;
    }
    // Who asks while a save is awaited, such as one who quits after closing the window, awaits it as well.
    m_savingAll.push_back(completion);
    if (m_savingAll.size() > 1)
        return;
    saveChanges({}, [this](bool succeeded) {
        for (const Completion& waiting : std::exchange(m_savingAll, {}))
            call(waiting, succeeded);
    });
}

/// Asks about what is unsaved in the documents other than `givenUp`, until nothing is.
void DocumentController::saveChanges(const Documents& givenUp, const Completion& completion) {
    whenNothingIsSaving([this, givenUp, completion](bool succeeded) {
        if (!succeeded) {
            call(completion, false);
            return;
        }
        Documents edited;
        for (const std::shared_ptr<Document>& document : Documents(m_documents)) {
            document->commitEditing();
            if (document->isDocumentEdited() && !contains(givenUp, document))
                edited.push_back(document);
        }
        if (edited.empty()) {
            call(completion, true);
            return;
        }
        DocumentPresenter::SaveAllAnswer reply = askAboutChanges(edited);
        if (reply.answer == DocumentPresenter::SaveAnswer::Cancel) {
            call(completion, false);
            return;
        }
        if (reply.answer == DocumentPresenter::SaveAnswer::DontSave)
            reply.toSave.clear();
        Documents givenUpNow = givenUp;
        std::copy_if(edited.begin(), edited.end(), std::back_inserter(givenUpNow),
                     [&reply](const auto& each) { return !contains(reply.toSave, each); });
        saveAll(reply.toSave, [this, givenUpNow, completion](bool allSaved) {
            if (allSaved)
                saveChanges(givenUpNow, completion); // some may have been changed while they were being saved
            else
                call(completion, false);
        });
    });
}

DocumentPresenter::SaveAllAnswer DocumentController::askAboutChanges(const Documents& edited) {
    const auto question = noteQuestion(edited);
    if (edited.size() > 1)
        return m_presenter.askToSaveAll(edited);
    m_presenter.bringForward(edited.front());
    setCurrentDocument(edited.front());
    return {m_presenter.askToSave(edited.front()), edited};
}

/// One after the other, so that the questions about places come one at a time. Stops at the first that isn't saved.
void DocumentController::saveAll(Documents documents, const Completion& completion) {
    while (!documents.empty() && !contains(m_documents, documents.front()))
        documents.erase(documents.begin());
    if (documents.empty()) {
        call(completion, true);
        return;
    }
    const std::shared_ptr<Document> next = documents.front();
    documents.erase(documents.begin());
    if (next->fileURL().isEmpty()) {
        m_presenter.bringForward(next);
        setCurrentDocument(next);
    }
    saveDocument(next, [this, documents, completion](bool isSaved) {
        if (isSaved)
            saveAll(documents, completion);
        else
            call(completion, false);
    });
}

/// Fails if one of the saves does.
void DocumentController::whenNothingIsSaving(const Completion& completion) {
    const std::shared_ptr<Document> document = m_saver.anyBeingSaved();
    if (!document) {
        call(completion, true);
        return;
    }
    m_saver.whenSaved(*document, [this, completion](bool isSaved) {
        if (isSaved)
            whenNothingIsSaving(completion);
        else
            call(completion, false);
    });
}

void DocumentController::prepareForSessionEnd(const Completion& completion) {
    for (const std::shared_ptr<Document>& document : Documents(m_documents))
        document->commitEditing();
    Q_EMIT sessionWillEnd();
    whenNothingIsSaving(completion);
}
