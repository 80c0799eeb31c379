#pragma once

#include "DocumentPresenter.h"
#include "DocumentWindow.h"

#include <QList>
#include <QObject>
#include <QPointer>

/// Shows the documents of a controller as tabs of one window, and asks its questions over that window.
class WindowPresenter : public QObject, public DocumentPresenter {
    Q_OBJECT

public:
    /// `dialogs` must outlive the presenter.
    explicit WindowPresenter(DocumentDialogs& dialogs, QObject* parent = nullptr);
    ~WindowPresenter() override;

    /// To be called once, before the first document: the services refer to the controller that this presenter is for.
    void setServices(WindowServices& services) { m_services = &services; }

    /// Takes the window away without asking anything; for the end of the program.
    void closeWindow();

    /// Null while no document is open.
    [[nodiscard]] DocumentWindow* documentWindow() const { return m_window; }

    /// The window that a question belongs to: the active one, else one that is visible; null when there is none.
    [[nodiscard]] static QWidget* windowForQuestions();

    void show(const std::shared_ptr<Document>& document) override;
    void bringForward(const std::shared_ptr<Document>& document) override;
    std::shared_ptr<void> showReading(const QString& name, const std::function<void()>& giveUp) override;
    SaveAnswer askToSave(const std::shared_ptr<Document>& document) override;
    SaveAllAnswer askToSaveAll(const std::vector<std::shared_ptr<Document>>& documents) override;
    OverwriteAnswer askAboutChangedFile(const std::shared_ptr<Document>& document) override;
    OverwriteAnswer askAboutSignatures(const std::shared_ptr<Document>& document) override;
    bool askToReload(const std::shared_ptr<Document>& document) override;
    void presentNotice(const std::shared_ptr<Document>& document, const QString& sentence) override;
    bool askToRevert(const std::shared_ptr<Document>& document) override;
    std::optional<QString> chooseSaveLocation(const std::shared_ptr<Document>& document,
                                              const QString& suggestedName) override;
    void presentError(const QString& title, const QString& sentence) override;
    bool offerSaveAs(const std::shared_ptr<Document>& document, const QString& title, const QString& sentence) override;
    void didClose(const std::shared_ptr<Document>& document) override;

Q_SIGNALS:
    /// A document came to the front, or a file has filled the untitled document of a tab.
    void documentPresented();

private:
    void putReadingsOver(QWidget* window);

    DocumentDialogs& m_dialogs;
    WindowServices* m_services = nullptr;
    QPointer<DocumentWindow> m_window;
    QList<QPointer<QWidget>> m_shownReadings;
};
