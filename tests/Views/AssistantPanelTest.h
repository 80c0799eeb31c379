#pragma once

#include "AssistantBubbleList.h"
#include "AssistantPanel.h"
#include "AssistantViewModel.h"
#include "MessageField.h"
#include "ScriptedAIProvider.h"
#include "ViewTest.h"

#include <QAbstractButton>

/// The panel on the screen, with a model that answers what the test says.
class AssistantPanelTest : public ViewTest {
protected:
    void openPanel(const std::vector<AssistantTurn>& turns = {}, QSize size = {420, 700}) {
        if (!turns.empty()) {
            ChatSession session;
            session.title = QStringLiteral("Kept");
            session.turns = turns;
            keep({session});
        }
        m_viewModel = AssistantViewModel::create(TextOnlyAssistantContext{m_file, QStringLiteral("Text")}, m_provider);
        m_panel = std::make_unique<AssistantPanel>(m_viewModel);
        show(*m_panel, size);
        m_field = find<MessageField>(*m_panel, QStringLiteral("message"));
    }

    /// Saves these chats for the file of the panel.
    void keep(const std::vector<ChatSession>& sessions) const;

    QAbstractButton* button(const QString& name) const { return find<QAbstractButton>(*m_panel, name); }
    /// Presses a button by its keyboard, which works wherever it is scrolled to.
    static void press(QWidget* widget) {
        ASSERT_TRUE(widget && widget->isEnabled() && widget->isVisible());
        widget->setFocus();
        QTest::keyClick(widget, Qt::Key_Space);
    }
    /// A button of the newest reply.
    QWidget* replyButton(const QString& name) const {
        return find<QWidget>(*m_panel->list().bubble(m_viewModel->turns().back().id), name + QStringLiteral("Button"));
    }

    void ask(const QString& question) const {
        m_field->setFocus();
        QTest::keyClicks(m_field, question);
        QTest::keyClick(m_field, Qt::Key_Return);
        waitForCall();
    }
    void waitForCall() const {
        ASSERT_TRUE(QTest::qWaitFor([this] { return m_provider->calls.size() > m_answered; }));
    }
    void reply(const QString& text) {
        m_answered = m_provider->calls.size();
        m_provider->reply(text);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !m_viewModel->isRunning(); }));
    }

    const QUrl m_file = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("paper.xlsx")));
    const std::shared_ptr<ScriptedAIProvider> m_provider = std::make_shared<ScriptedAIProvider>();
    std::size_t m_answered = 0;
    std::shared_ptr<AssistantViewModel> m_viewModel;
    std::unique_ptr<AssistantPanel> m_panel;
    MessageField* m_field = nullptr;
};
