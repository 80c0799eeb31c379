#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class Document;

/// What a DocumentController needs from the application to show documents and to ask the user. Calls come on the main
/// thread; the asking ones return when the user has answered, and may run a nested event loop meanwhile.
class DocumentPresenter {
public:
    enum class SaveAnswer { Save, DontSave, Cancel };
    enum class OverwriteAnswer { Overwrite, SaveAs, Cancel };

    struct SaveAllAnswer {
        SaveAnswer answer = SaveAnswer::Cancel;
        std::vector<std::shared_ptr<Document>> toSave; ///< with `Save`: the others lose their changes
    };

    virtual ~DocumentPresenter() = default;

    /// Makes a window for a document that has just been opened or made, and brings it to the front.
    virtual void show(const std::shared_ptr<Document>& document) = 0;

    /// Brings the document's window to the front; makes one if it has none.
    virtual void bringForward(const std::shared_ptr<Document>& document) = 0;

    /// Shows that the file of that name is still being read, until what this returns is let go of. `giveUp` ends the
    /// reading, and may be called at any time; it doesn't ask. Null when nothing is shown.
    virtual std::shared_ptr<void> showReading(const QString& /*name*/, const std::function<void()>& /*giveUp*/) {
        return nullptr;
    }

    /// Asks whether to save the changes of a document that is about to be closed.
    virtual SaveAnswer askToSave(const std::shared_ptr<Document>& document) = 0;

    /// Asks once about all documents with unsaved changes, which are about to be closed. There are at least two.
    virtual SaveAllAnswer askToSaveAll(const std::vector<std::shared_ptr<Document>>& documents) = 0;

    /// Asks what to do about a file that another program has changed since the document was read or saved.
    virtual OverwriteAnswer askAboutChangedFile(const std::shared_ptr<Document>& document) = 0;

    /// Asks what to do about a digital signature that the document's file loses when the document is saved.
    virtual OverwriteAnswer askAboutSignatures(const std::shared_ptr<Document>& document) = 0;

    /// Another program has changed the file of a document that has changes of its own: asks whether to give these up
    /// and read the file.
    virtual bool askToReload(const std::shared_ptr<Document>& document) = 0;

    /// Tells the user in passing something about the document that needs no answer.
    virtual void presentNotice(const std::shared_ptr<Document>& document, const QString& sentence) = 0;

    /// Asks whether to give up the document's changes and read its file again.
    virtual bool askToRevert(const std::shared_ptr<Document>& document) = 0;

    /// Asks for the path to save to, and whether a file that is there may be replaced. None if the user cancels.
    virtual std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>& document,
                                                      const QString& suggestedName) = 0;

    /// Tells that something failed: `title` says what, `sentence` why.
    virtual void presentError(const QString& title, const QString& sentence) = 0;

    /// Tells that the document couldn't be saved and offers to save it elsewhere. True if the user wants that.
    virtual bool offerSaveAs(const std::shared_ptr<Document>& document, const QString& title,
                             const QString& sentence) = 0;

    /// The document is no longer open: its windows have to go, without asking anything.
    virtual void didClose(const std::shared_ptr<Document>& document) = 0;
};
