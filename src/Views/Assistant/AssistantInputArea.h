#pragma once

#include <QWidget>

#include <memory>

class AssistantViewModel;
class AttachmentChip;
class MessageField;
class QToolButton;
class SendButton;

/// Where a message to the assistant is written: prompts to start with, the attached file, the text, and below it the
/// attachment and model buttons and the one that sends.
class AssistantInputArea : public QWidget {
    Q_OBJECT

public:
    explicit AssistantInputArea(std::shared_ptr<AssistantViewModel> viewModel, QWidget* parent = nullptr);
    ~AssistantInputArea() override;

    [[nodiscard]] MessageField* field() const { return m_field; }

    /// A draft of more than blanks and tabs, or an attachment, and no question that runs.
    [[nodiscard]] bool canSubmit() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeQuickPrompts();
    QWidget* makeButtonRow();
    QToolButton* makeModelMenu();
    void updateQuickPrompts();
    void updateAttachment();
    void updateModel();
    void updateSend();

    std::shared_ptr<AssistantViewModel> m_viewModel;
    QWidget* m_quickPrompts;
    QWidget* m_box; ///< around chip, text and buttons
    AttachmentChip* m_chip;
    MessageField* m_field;
    QToolButton* m_model = nullptr;
    SendButton* m_send = nullptr;
};
