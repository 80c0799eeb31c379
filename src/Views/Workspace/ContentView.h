#pragma once

#include <QUrl>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class DocumentController;
class FileReading;
class PDFDocument;
class PDFEditorDocument;
class PDFEditorWorkspaceView;
class PDFSource;
class QVBoxLayout;
class ToolState;
class UserDefaults;
struct FileStamp;

/// The root of a document window: shows the unlock screen for a locked document, the landing content for one without
/// pages, and the workspace for any other, and decides anew whenever the document changes.
class ContentView : public QWidget {
    Q_OBJECT

public:
    /// Shows the password prompt of a file that is opened in place; none when the user gives up.
    using AskPassword = std::function<std::optional<QString>(QWidget* parent)>;

    /// `controller` and `defaults` must outlive the view.
    ContentView(std::shared_ptr<PDFEditorDocument> document, DocumentController& controller, UserDefaults& defaults,
                AskPassword askPassword, QWidget* parent = nullptr);
    ~ContentView() override;

    [[nodiscard]] const std::shared_ptr<PDFEditorDocument>& document() const { return m_document; }
    [[nodiscard]] const std::shared_ptr<ToolState>& toolState() const { return m_toolState; }
    /// Null while the unlock screen or the landing content shows.
    [[nodiscard]] PDFEditorWorkspaceView* workspace() const { return m_workspace; }

    /// Puts the file into this window's document, which takes its name. A file that is open already comes forward
    /// instead. Nothing changes when it can't be read or the user gives up its password. A file that is converted first
    /// takes this window's place when it is there.
    void openInPlace(const QUrl& url);

Q_SIGNALS:
    /// Another kind of content shows, or another workspace.
    void contentChanged();
    void openedInPlace();
    /// `title` says what failed, `sentence` why.
    void openingFailed(const QString& title, const QString& sentence);
    void settingsRequested();
    /// The user gave up unlocking the document.
    void closeRequested();

private:
    enum class Content { none, unlock, landing, workspace };

    void decideContent();
    void replaceContent(Content content, QWidget* view);
    void failToOpen(const QUrl& url, const QString& sentence);
    void fill(const QUrl& url, const std::shared_ptr<PDFSource>& source, const std::optional<FileStamp>& stamp);

    std::shared_ptr<PDFEditorDocument> m_document;
    DocumentController& m_controller;
    UserDefaults& m_defaults;
    AskPassword m_askPassword;
    std::shared_ptr<ToolState> m_toolState;
    QVBoxLayout* m_layout;
    Content m_content = Content::none;
    QWidget* m_view = nullptr;
    PDFEditorWorkspaceView* m_workspace = nullptr;
    /// What the workspace was built for.
    std::weak_ptr<PDFDocument> m_workspaceDocument;
    std::unique_ptr<FileReading> m_reading; ///< of the file that is being opened in place
};
