#pragma once

#include <QFrame>

#include <memory>

class AssistantViewModel;
class QLabel;
class QScrollArea;

/// The popover with the saved conversations of a document, the newest first. It closes with a choice, with Escape and
/// with a click outside, and is deleted then; deleting a conversation leaves it open.
class ChatHistoryListView : public QFrame {
    Q_OBJECT

public:
    explicit ChatHistoryListView(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent = nullptr);
    ~ChatHistoryListView() override;

    /// Below `anchor`, moved so that the screen shows all of it.
    void popUp(const QWidget& anchor);

private:
    void showSessions();
    void focusRow(int index);

    std::shared_ptr<AssistantViewModel> m_viewModel;
    QLabel* m_none;
    QScrollArea* m_scrollArea;
};
