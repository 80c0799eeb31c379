#pragma once

#include <QWidget>

#include <functional>
#include <memory>

class AssistantBubbleList;
class AssistantInputArea;
class AssistantViewModel;
class DropHighlight;
class PassingNotice;
class QAction;

/// The side panel in which the user talks to the assistant: commands, the conversation, and the place to write. It only
/// shows the state of its view model and calls its operations. A file that is dropped on it is attached.
class AssistantPanel : public QWidget {
    Q_OBJECT

public:
    /// Makes itself the one that lets the user choose files to attach.
    explicit AssistantPanel(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent = nullptr);
    ~AssistantPanel() override;

    /// Without it there is no button for the page sidebar.
    void setOnToggleSidebar(std::function<void()> onToggleSidebar);
    std::function<void()> onClose;

    [[nodiscard]] const std::shared_ptr<AssistantViewModel>& viewModel() const { return m_viewModel; }
    [[nodiscard]] AssistantBubbleList& list() const { return *m_list; }
    [[nodiscard]] PassingNotice& notice() const { return *m_notice; }

Q_SIGNALS:
    void settingsRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QWidget* makeHeader();
    void attachFirst(const QList<QUrl>& files);
    void goToPage(int page);
    void tell(const QString& sentence);
    void showHistory();

    std::shared_ptr<AssistantViewModel> m_viewModel;
    std::function<void()> m_onToggleSidebar;
    QWidget* m_sidebarButton = nullptr;
    QWidget* m_historyButton = nullptr;
    AssistantBubbleList* m_list;
    AssistantInputArea* m_input;
    PassingNotice* m_notice;
    DropHighlight* m_dropHighlight;
};
