#include "AssistantPanelTest.h"

#include "ChatHistoryStore.h"
#include "MarkdownContent.h"
#include "PassingNotice.h"
#include "SendButton.h"
#include "TypingIndicator.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QToolButton>

void AssistantPanelTest::keep(const std::vector<ChatSession>& sessions) const {
    ChatHistoryStore::save(sessions, m_file.toLocalFile());
}

/// What shows of the panel's changing parts.
static QString state(const QWidget& panel) {
    QStringList parts;
    for (const char* name : {"greeting", "summarizePage", "expandOnTopic", "attachmentChip", "typingIndicator"}) {
        const auto* part = panel.findChild<QWidget*>(QLatin1String(name));
        if (part && part->isVisible())
            parts << QLatin1String(name);
    }
    if (panel.findChild<SendButton*>()->isEnabled())
        parts << u"send"_qs;
    return parts.join(u' ');
}

TEST_F(AssistantPanelTest, goesFromEmptyToRunningToConversing) {
    openPanel();
    EXPECT_TRUE(m_field->hasFocus());
    EXPECT_EQ(m_field->placeholderText(), u"Message Assistant..."_qs);
    EXPECT_EQ(find<QLabel>(*m_panel, u"greeting"_qs)->text(), u"Hi there"_qs);
    EXPECT_EQ(state(*m_panel), u"greeting summarizePage expandOnTopic"_qs);
    EXPECT_EQ(find<QWidget>(*m_panel, u"toggleSidebarButton"_qs)->isVisible(), false);

    QTest::keyClicks(m_field, u"Why?"_qs);
    EXPECT_EQ(m_viewModel->draft(), u"Why?"_qs);
    EXPECT_EQ(state(*m_panel), u"greeting summarizePage expandOnTopic send"_qs);
    QTest::mouseClick(m_panel->findChild<SendButton*>(), Qt::LeftButton);
    waitForCall();
    EXPECT_TRUE(m_field->toPlainText().isEmpty());
    EXPECT_EQ(state(*m_panel), u"typingIndicator"_qs);

    // What is typed meanwhile stays, and can't be sent.
    QTest::keyClicks(m_field, u"And"_qs);
    EXPECT_EQ(state(*m_panel), u"typingIndicator"_qs);
    reply(u"**Because.**"_qs);
    EXPECT_EQ(state(*m_panel), u"send"_qs);
    ASSERT_EQ(m_viewModel->turns().size(), 2U);
    const QWidget* bubble = m_panel->list().bubble(m_viewModel->turns().back().id);
    ASSERT_TRUE(bubble);
    EXPECT_EQ(bubble->findChild<MarkdownContent*>()->text(), u"**Because.**"_qs);

    ask(u" again"_qs);
    m_provider->fail("The line is dead.");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_viewModel->isRunning(); }));
    bubble = m_panel->list().bubble(m_viewModel->turns().back().id);
    ASSERT_TRUE(bubble);
    auto* error = find<QTextEdit>(*bubble, u"errorText"_qs);
    EXPECT_EQ(error->toPlainText(), u"The line is dead."_qs);
    const QColor red = error->palette().color(QPalette::Text);
    EXPECT_GT(red.red(), 2 * red.green());
}

TEST_F(AssistantPanelTest, quickPromptsAskTheirQuestions) {
    const struct {
        QString name;
        QString label;
        QString question;
    } cases[] = {{u"summarizePage"_qs, u"Create a summary of this page"_qs, u"Summarize this page"_qs},
                 {u"expandOnTopic"_qs, u"Expand on this topic"_qs, u"Expand on this topic"_qs}};
    openPanel();
    for (const auto& each : cases) {
        EXPECT_EQ(button(each.name)->text(), each.label);
        press(button(each.name));
        waitForCall();
        EXPECT_EQ(m_provider->calls.back().lastText, each.question);
        EXPECT_TRUE(m_field->hasFocus()) << "The pressed button is gone.";
        reply(u"Yes."_qs);
        press(button(u"newConversationButton"_qs));
    }
}

TEST_F(AssistantPanelTest, onlyAPlainReturnSends) {
    openPanel();
    const auto typed = [this](const QString& text, Qt::KeyboardModifiers modifiers) {
        m_field->clear();
        QTest::keyClicks(m_field, text);
        QTest::keyClick(m_field, Qt::Key_Return, modifiers);
        return m_field->toPlainText();
    };
    EXPECT_EQ(typed(u"a"_qs, Qt::ShiftModifier), u"a\n"_qs);
    EXPECT_EQ(typed(u"a"_qs, Qt::AltModifier), u"a\n"_qs);
    EXPECT_EQ(typed(u"a"_qs, Qt::ControlModifier), u"a\n"_qs);
    EXPECT_EQ(typed(u""_qs, Qt::NoModifier), u"\n"_qs) << "There is nothing to send.";
    EXPECT_EQ(typed(u" \t "_qs, Qt::NoModifier).trimmed(), QString());
    EXPECT_TRUE(m_viewModel->turns().empty());

    // Newlines count as text, though nothing is sent of them.
    m_viewModel->setDraft(u"\n"_qs);
    EXPECT_TRUE(m_panel->findChild<SendButton*>()->isEnabled());
    QTest::keyClick(m_field, Qt::Key_Return);
    EXPECT_EQ(m_field->toPlainText(), u"\n"_qs);

    EXPECT_EQ(typed(u"a"_qs, Qt::KeypadModifier), QString());
    waitForCall();
    EXPECT_EQ(typed(u"b"_qs, Qt::NoModifier), u"b\n"_qs) << "A question runs.";
    reply(u"c"_qs);
}

TEST_F(AssistantPanelTest, theFieldGrowsToEightLines) {
    openPanel();
    const int one = m_field->height();
    int former = one;
    for (int line = 2; line <= 12; ++line) {
        QTest::keyClick(m_field, Qt::Key_Return, Qt::ShiftModifier);
        if (line <= MessageField::mostLines)
            EXPECT_GT(m_field->height(), former) << line;
        else
            EXPECT_EQ(m_field->height(), former) << line;
        former = m_field->height();
    }
    m_viewModel->setDraft({});
    EXPECT_EQ(m_field->height(), one);
    m_viewModel->setDraft(QString(200, u'W'));
    EXPECT_GT(m_field->height(), one) << "A word without blanks wraps too.";
}

TEST_F(AssistantPanelTest, anAttachmentGoesWithTheNextQuestion) {
    openPanel();
    const QString path = m_folder.filePath(u"notes.txt"_qs);
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("Rain at noon"));
    file.close();
    press(button(u"attachFileButton"_qs));
    auto* dialog = m_panel->findChild<QFileDialog*>(u"attachmentPanel"_qs);
    ASSERT_TRUE(dialog);
    dialog->selectFile(path);
    static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName().has_value(); }));
    EXPECT_EQ(state(*m_panel), u"greeting summarizePage expandOnTopic attachmentChip send"_qs);

    press(button(u"removeAttachmentButton"_qs));
    EXPECT_EQ(state(*m_panel), u"greeting summarizePage expandOnTopic"_qs);
    EXPECT_FALSE(m_viewModel->attachmentContent());

    m_viewModel->attach(QUrl::fromLocalFile(path));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName().has_value(); }));
    QTest::keyClick(m_field, Qt::Key_Return);
    EXPECT_EQ(state(*m_panel), u"typingIndicator"_qs);
    waitForCall();
    EXPECT_TRUE(m_provider->calls.back().lastText.contains(u"Rain at noon"_qs));
    EXPECT_EQ(m_viewModel->turns().back().text, u"Attached file: notes.txt"_qs);
    reply(u"So be it."_qs);
}

TEST_F(AssistantPanelTest, theModelMenuShowsAndSetsThePreference) {
    openPanel();
    auto* model = find<QToolButton>(*m_panel, u"modelMenuButton"_qs);
    QStringList titles;
    for (const QAction* action : model->menu()->actions()) {
        titles << action->text();
        EXPECT_EQ(action->isChecked(), action->text() == info(m_viewModel->modelPreference()).rawValue);
    }
    EXPECT_EQ(titles, QStringList({u"High Perf"_qs, u"Balanced"_qs, u"Fast"_qs}));
    EXPECT_EQ(model->text(), u"High Perf"_qs);
    model->menu()->actions().at(2)->trigger();
    EXPECT_EQ(model->text(), u"Fast"_qs);
    ask(u"Hm"_qs);
    EXPECT_EQ(m_provider->calls.back().preference, AIModelPreference::fast);
    reply(u"Ah"_qs);
}

TEST_F(AssistantPanelTest, aReplyHasItsActionsInOrder) {
    openPanel();
    ask(u"Show"_qs);
    reply(u"# Title\n\nA *word*"_qs);
    QStringList helps;
    for (const QToolButton* each : m_panel->list().bubble(m_viewModel->turns().back().id)->findChildren<QToolButton*>())
        helps << each->toolTip();
    EXPECT_EQ(helps, QStringList({u"Helpful"_qs, u"Not helpful"_qs, u"Share response"_qs, u"Copy to clipboard"_qs,
                                  u"Read aloud"_qs, u"Regenerate response"_qs,
                                  u"Copy and edit response in a new document"_qs}));
    EXPECT_EQ(qobject_cast<QToolButton*>(replyButton(u"editInAPage"_qs))->text(), u"Edit in a page"_qs);

    for (const char* name : {"copyResponse", "editInAPage"}) {
        QGuiApplication::clipboard()->setText(u"former"_qs);
        press(replyButton(QLatin1String(name)));
        EXPECT_EQ(QGuiApplication::clipboard()->text(), u"# Title\n\nA *word*"_qs) << name;
    }

    // It sends what stands in the field, and without that it does nothing.
    press(replyButton(u"regenerate"_qs));
    EXPECT_EQ(m_viewModel->turns().size(), 2U);
    m_viewModel->setDraft(u"Something else"_qs);
    press(replyButton(u"regenerate"_qs));
    waitForCall();
    EXPECT_EQ(m_provider->calls.back().lastText, u"Something else"_qs);
    reply(u"Fine"_qs);
}

/// Takes the addresses that the desktop would be asked to open.
class UrlCatcher : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void take(const QUrl& url) { urls.append(url); }

public:
    QList<QUrl> urls;
};

TEST_F(AssistantPanelTest, aReplyIsSharedByMailOrAsAFile) {
    openPanel();
    ask(u"Show"_qs);
    const QString text = u"50 % & more?\nZwei Größen = 1"_qs;
    reply(text);
    const auto choose = [this](const QString& name) {
        press(replyButton(u"shareResponse"_qs));
        QMenu* menu = m_panel->findChild<QMenu*>(u"shareMenu"_qs);
        ASSERT_TRUE(menu);
        auto* entry = menu->findChild<QAction*>(name);
        ASSERT_TRUE(entry);
        menu->setActiveAction(entry);
        QTest::keyClick(menu, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(u"mailto"_qs, &catcher, "take");
    choose(u"sendByMail"_qs);
    QDesktopServices::unsetUrlHandler(u"mailto"_qs);
    ASSERT_EQ(catcher.urls.size(), 1);
    const QByteArray address = catcher.urls.front().toEncoded();
    const QByteArray body = address.mid(address.indexOf("&body=") + 6);
    EXPECT_EQ(QUrl::fromPercentEncoding(body), QString(text).replace(u'\n', u"\r\n"_qs));

    for (const bool canBeWritten : {true, false}) {
        const QString path = m_folder.filePath(canBeWritten ? u"reply.txt"_qs : u"no/folder/reply.txt"_qs);
        choose(u"saveAsTextFile"_qs);
        auto* panel = m_panel->findChild<QFileDialog*>(u"savePanel"_qs);
        ASSERT_TRUE(panel);
        Q_EMIT panel->fileSelected(path);
        delete panel;
        QFile file(path);
        EXPECT_EQ(file.open(QFile::ReadOnly), canBeWritten);
        if (canBeWritten) {
            EXPECT_EQ(QString::fromUtf8(file.readAll()), text + u'\n');
        }
        EXPECT_EQ(m_panel->notice().message().startsWith(u"“reply.txt” could not be saved"_qs), !canBeWritten);
    }
}

TEST_F(AssistantPanelTest, withoutASpeechServiceASentenceSaysSo) {
    qputenv("SPEECHD_ADDRESS", "unix_socket:/nowhere/speechd.sock");
    openPanel();
    ask(u"Say"_qs);
    reply(u"Nothing"_qs);
    press(replyButton(u"readAloud"_qs));
    EXPECT_EQ(m_panel->notice().message(),
              u"Reading aloud needs the desktop’s speech service, which isn’t available."_qs);
    qunsetenv("SPEECHD_ADDRESS");
}

TEST_F(AssistantPanelTest, aChatIsKeptWhenThePanelGoesInTheMiddleOfAQuestion) {
    openPanel();
    ask(u"Still there?"_qs);
    const std::weak_ptr<AssistantViewModel> viewModel = m_viewModel;
    m_panel.reset();
    m_viewModel.reset();
    ASSERT_FALSE(viewModel.expired());
    m_provider->reply(u"Always."_qs);
    EXPECT_TRUE(QTest::qWaitFor([&] { return viewModel.expired(); }));
    const std::vector<ChatSession> kept = ChatHistoryStore::load(m_file.toLocalFile());
    ASSERT_EQ(kept.size(), 1U);
    ASSERT_EQ(kept[0].turns.size(), 2U);
    EXPECT_EQ(kept[0].turns[1].text, u"Always."_qs);

    openPanel();
    EXPECT_TRUE(m_panel->list().bubble(kept[0].turns[1].id));
}

TEST_F(AssistantPanelTest, everyControlHasANameForThoseWhoCantSeeIt) {
    openPanel({{QUuid::createUuid(), AssistantTurn::Role::user, u"Q"_qs},
               {QUuid::createUuid(), AssistantTurn::Role::assistant, u"A"_qs},
               {QUuid::createUuid(), AssistantTurn::Role::error, u"E"_qs}});
    int count = 0;
    for (const QWidget* widget : m_panel->findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible())
            continue;
        ++count;
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
    EXPECT_GE(count, 18);
}

#include "AssistantPanelTest.moc"
