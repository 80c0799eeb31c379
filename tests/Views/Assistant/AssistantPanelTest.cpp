#include "AssistantPanelTest.h"

#include "ChatHistoryStore.h"
#include "MarkdownContent.h"
#include "PassingNotice.h"
#include "SendButton.h"
#include "TypingIndicator.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
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
        parts << QStringLiteral("send");
    return parts.join(u' ');
}

TEST_F(AssistantPanelTest, goesFromEmptyToRunningToConversing) {
    openPanel();
    EXPECT_TRUE(m_field->hasFocus());
    EXPECT_EQ(m_field->placeholderText(), QStringLiteral("Message Assistant..."));
    EXPECT_EQ(find<QLabel>(*m_panel, QStringLiteral("greeting"))->text(), QStringLiteral("Hi there"));
    EXPECT_EQ(state(*m_panel), QStringLiteral("greeting summarizePage expandOnTopic"));
    EXPECT_EQ(find<QWidget>(*m_panel, QStringLiteral("toggleSidebarButton"))->isVisible(), false);

    QTest::keyClicks(m_field, QStringLiteral("Why?"));
    EXPECT_EQ(m_viewModel->draft(), QStringLiteral("Why?"));
    EXPECT_EQ(state(*m_panel), QStringLiteral("greeting summarizePage expandOnTopic send"));
    QTest::mouseClick(m_panel->findChild<SendButton*>(), Qt::LeftButton);
    waitForCall();
    EXPECT_TRUE(m_field->toPlainText().isEmpty());
    EXPECT_EQ(state(*m_panel), QStringLiteral("typingIndicator"));

    // What is typed meanwhile stays, and can't be sent.
    QTest::keyClicks(m_field, QStringLiteral("And"));
    EXPECT_EQ(state(*m_panel), QStringLiteral("typingIndicator"));
    reply(QStringLiteral("**Because.**"));
    EXPECT_EQ(state(*m_panel), QStringLiteral("send"));
    ASSERT_EQ(m_viewModel->turns().size(), 2U);
    const QWidget* bubble = m_panel->list().bubble(m_viewModel->turns().back().id);
    ASSERT_TRUE(bubble);
    EXPECT_EQ(bubble->findChild<MarkdownContent*>()->text(), QStringLiteral("**Because.**"));

    ask(QStringLiteral(" again"));
    m_provider->fail("The line is dead.");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_viewModel->isRunning(); }));
    bubble = m_panel->list().bubble(m_viewModel->turns().back().id);
    ASSERT_TRUE(bubble);
    auto* error = find<QTextEdit>(*bubble, QStringLiteral("errorText"));
    EXPECT_EQ(error->toPlainText(), QStringLiteral("The line is dead."));
    const QColor red = error->palette().color(QPalette::Text);
    EXPECT_GT(red.red(), 2 * red.green());
}

TEST_F(AssistantPanelTest, quickPromptsAskTheirQuestions) {
    const struct {
        QString name;
        QString label;
        QString question;
    } cases[] = {{QStringLiteral("summarizePage"), QStringLiteral("Create a summary of this page"),
                  QStringLiteral("Summarize this page")},
                 {QStringLiteral("expandOnTopic"), QStringLiteral("Expand on this topic"),
                  QStringLiteral("Expand on this topic")}};
    openPanel();
    for (const auto& each : cases) {
        EXPECT_EQ(button(each.name)->text(), each.label);
        press(button(each.name));
        waitForCall();
        EXPECT_EQ(m_provider->calls.back().lastText, each.question);
        EXPECT_TRUE(m_field->hasFocus()) << "The pressed button is gone.";
        reply(QStringLiteral("Yes."));
        press(button(QStringLiteral("newConversationButton")));
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
    EXPECT_EQ(typed(QStringLiteral("a"), Qt::ShiftModifier), QStringLiteral("a\n"));
    EXPECT_EQ(typed(QStringLiteral("a"), Qt::AltModifier), QStringLiteral("a\n"));
    EXPECT_EQ(typed(QStringLiteral("a"), Qt::ControlModifier), QStringLiteral("a\n"));
    EXPECT_EQ(typed(QStringLiteral(""), Qt::NoModifier), QStringLiteral("\n")) << "There is nothing to send.";
    EXPECT_EQ(typed(QStringLiteral(" \t "), Qt::NoModifier).trimmed(), QString());
    EXPECT_TRUE(m_viewModel->turns().empty());

    // Newlines count as text, though nothing is sent of them.
    m_viewModel->setDraft(QStringLiteral("\n"));
    EXPECT_TRUE(m_panel->findChild<SendButton*>()->isEnabled());
    QTest::keyClick(m_field, Qt::Key_Return);
    EXPECT_EQ(m_field->toPlainText(), QStringLiteral("\n"));

    EXPECT_EQ(typed(QStringLiteral("a"), Qt::KeypadModifier), QString());
    waitForCall();
    EXPECT_EQ(typed(QStringLiteral("b"), Qt::NoModifier), QStringLiteral("b\n")) << "A question runs.";
    reply(QStringLiteral("c"));
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

TEST_F(AssistantPanelTest, aHugeTextInTheFieldIsASignThatGoesWithTheQuestion) {
    openPanel();
    const QString huge = QStringLiteral("A line with “words”.\n").repeated(50'000);
    m_viewModel->setDraft(huge); // as the pages' menu asks about a selected book
    EXPECT_EQ(m_viewModel->draft(), huge);
    EXPECT_LT(m_field->toPlainText().size(), 3000);
    m_field->selectAll();
    QTest::keyClick(m_field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), huge);

    m_viewModel->setDraft({});
    m_field->insertPlainText(QStringLiteral("a\uFFFCb"));
    QTest::keyClick(m_field, Qt::Key_Left);
    QTest::keyClick(m_field, Qt::Key_V, Qt::ControlModifier);
    QTest::keyClicks(m_field, QStringLiteral("why"));
    const QString pasted = QStringLiteral("a\uFFFC") + huge + QStringLiteral("whyb");
    EXPECT_EQ(m_viewModel->draft(), pasted);
    m_field->undo();
    m_field->undo();
    EXPECT_EQ(m_viewModel->draft(), QStringLiteral("a\uFFFCb"));
    m_field->redo();
    m_field->redo();
    QTest::keyClick(m_field, Qt::Key_Return);
    waitForCall();
    EXPECT_EQ(m_provider->calls.back().lastText, pasted);
    EXPECT_TRUE(m_field->toPlainText().isEmpty());
    reply(QStringLiteral("Because"));
}

TEST_F(AssistantPanelTest, anAttachmentGoesWithTheNextQuestion) {
    openPanel();
    const QString path = m_folder.filePath(QStringLiteral("notes.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("Rain at noon"));
    file.close();
    press(button(QStringLiteral("attachFileButton")));
    auto* dialog = m_panel->findChild<QFileDialog*>(QStringLiteral("attachmentPanel"));
    ASSERT_TRUE(dialog);
    dialog->selectFile(path);
    static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName().has_value(); }));
    EXPECT_EQ(state(*m_panel), QStringLiteral("greeting summarizePage expandOnTopic attachmentChip send"));

    press(button(QStringLiteral("removeAttachmentButton")));
    EXPECT_EQ(state(*m_panel), QStringLiteral("greeting summarizePage expandOnTopic"));
    EXPECT_FALSE(m_viewModel->attachmentContent());

    m_viewModel->attach(QUrl::fromLocalFile(path));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName().has_value(); }));
    QTest::keyClick(m_field, Qt::Key_Return);
    EXPECT_EQ(state(*m_panel), QStringLiteral("typingIndicator"));
    waitForCall();
    EXPECT_TRUE(m_provider->calls.back().lastText.contains(QStringLiteral("Rain at noon")));
    EXPECT_EQ(m_viewModel->turns().back().text, QStringLiteral("Attached file: notes.txt"));
    reply(QStringLiteral("So be it."));
}

/// What the window system does for files that are dragged over a widget, and dropped there. False when nobody takes
/// them.
static bool drag(QWidget& target, const QList<QUrl>& urls, bool drops) {
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(target.rect().center(), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&target, &enter);
    QDropEvent drop(target.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, {});
    if (drops)
        QApplication::sendEvent(&target, &drop);
    return drops ? drop.isAccepted() : enter.isAccepted();
}

TEST_F(AssistantPanelTest, aDroppedFileIsAttached) {
    openPanel({{QUuid::createUuid(), AssistantTurn::Role::user, QStringLiteral("Before")}});
    QList<QUrl> urls;
    for (const char* name : {"one.txt", "two.txt"}) {
        QFile file(m_folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(name));
        urls << QUrl::fromLocalFile(file.fileName());
    }
    const QUrl folder = QUrl::fromLocalFile(m_folder.path() + u'/');
    auto* highlight = find<QWidget>(*m_panel, QStringLiteral("dropHighlight"));
    EXPECT_FALSE(drag(*m_panel, {QUrl(QStringLiteral("https://example.org/a.txt"))}, false));
    EXPECT_FALSE(highlight->isVisible());

    // Wherever it is dropped, a file takes the place of the one before.
    QWidget* const targets[] = {m_field->viewport(), find<QWidget>(m_panel->list(), QStringLiteral("userText")),
                                m_panel->list().viewport(), m_panel.get()};
    int count = 0;
    for (QWidget* target : targets) {
        const QUrl& url = urls[count++ % 2];
        EXPECT_TRUE(drag(*target, {url}, false));
        EXPECT_TRUE(highlight->isVisible());
        EXPECT_EQ(highlight->geometry(), m_panel->rect());
        EXPECT_EQ(m_panel->childAt(m_field->mapTo(m_panel.get(), QPoint(5, 5))), m_field->viewport());
        EXPECT_TRUE(drag(*target, {url}, true));
        EXPECT_FALSE(highlight->isVisible());
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_viewModel->attachmentContent() == url.fileName(); })) << count;
    }
    EXPECT_TRUE(m_field->toPlainText().isEmpty());

    EXPECT_TRUE(drag(*m_panel, {folder, urls[0], urls[1]}, true));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName() == QStringLiteral("one.txt"); }));
    EXPECT_EQ(m_panel->notice().message(), QStringLiteral("One file goes with a question: this one is “one.txt”."));
    EXPECT_TRUE(drag(*m_panel, {folder}, true));
    const QString refusal =
        QStringLiteral("“%1” can't be attached. It is a folder.").arg(QFileInfo(m_folder.path()).fileName());
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_panel->notice().message() == refusal; }));
    EXPECT_EQ(m_viewModel->attachmentName(), QStringLiteral("one.txt"));
}

TEST_F(AssistantPanelTest, aFailedQuestionIsEditedWithItsFile) {
    openPanel();
    QFile file(m_folder.filePath(QStringLiteral("notes.txt")));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("Rain at noon"));
    file.close();
    m_viewModel->attach(QUrl::fromLocalFile(file.fileName()));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_viewModel->attachmentName().has_value(); }));
    ask(QStringLiteral("Will it rain?"));
    m_provider->fail("The line is dead.");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !m_viewModel->isRunning(); }));

    press(replyButton(QStringLiteral("copyError")));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("The line is dead."));
    press(replyButton(QStringLiteral("editQuestion")));
    EXPECT_TRUE(m_field->hasFocus());
    EXPECT_EQ(m_field->toPlainText(), QStringLiteral("Will it rain?"));
    EXPECT_EQ(m_viewModel->attachmentContent(), QStringLiteral("Rain at noon"));
    EXPECT_EQ(m_viewModel->turns().size(), 2U);
    QTest::keyClicks(m_field, QStringLiteral(" Today?"));
    press(replyButton(QStringLiteral("editQuestion")));
    EXPECT_EQ(m_field->toPlainText(), QStringLiteral("Will it rain? Today?")) << "Nothing typed is lost.";

    m_answered = m_provider->calls.size();
    QTest::keyClick(m_field, Qt::Key_Return);
    waitForCall();
    EXPECT_TRUE(
        m_provider->calls.back().lastText.contains(QStringLiteral("Rain at noon\n---\n\nWill it rain? Today?")));
    reply(QStringLiteral("Yes."));
    const QUuid oldError = m_viewModel->turns()[1].id;
    QTest::keyClicks(m_field, QStringLiteral("And"));
    press(find<QWidget>(*m_panel->list().bubble(oldError), QStringLiteral("editQuestionButton")));
    EXPECT_EQ(m_field->toPlainText(), QStringLiteral("Will it rain?\n\nAnd"));
    EXPECT_FALSE(m_viewModel->attachmentName()) << "Only the last question's file is kept.";
}

TEST_F(AssistantPanelTest, theModelMenuShowsAndSetsThePreference) {
    openPanel();
    auto* model = find<QToolButton>(*m_panel, QStringLiteral("modelMenuButton"));
    QStringList titles;
    for (const QAction* action : model->menu()->actions()) {
        titles << action->text();
        EXPECT_EQ(action->isChecked(), action->text() == info(m_viewModel->modelPreference()).rawValue);
    }
    EXPECT_EQ(titles, QStringList({QStringLiteral("High Perf"), QStringLiteral("Balanced"), QStringLiteral("Fast")}));
    EXPECT_EQ(model->text(), QStringLiteral("High Perf"));
    model->menu()->actions().at(2)->trigger();
    EXPECT_EQ(model->text(), QStringLiteral("Fast"));
    ask(QStringLiteral("Hm"));
    EXPECT_EQ(m_provider->calls.back().preference, AIModelPreference::fast);
    reply(QStringLiteral("Ah"));
}

TEST_F(AssistantPanelTest, aReplyHasItsActionsInOrder) {
    openPanel();
    ask(QStringLiteral("Show"));
    reply(QStringLiteral("# Title\n\nA *word*"));
    QStringList helps;
    for (const QToolButton* each : m_panel->list().bubble(m_viewModel->turns().back().id)->findChildren<QToolButton*>())
        helps << each->toolTip();
    EXPECT_EQ(helps, QStringList({QStringLiteral("Helpful"), QStringLiteral("Not helpful"),
                                  QStringLiteral("Share response"), QStringLiteral("Copy to clipboard"),
                                  QStringLiteral("Read aloud"), QStringLiteral("Regenerate response"),
                                  QStringLiteral("Copy and edit response in a new document")}));
    EXPECT_EQ(qobject_cast<QToolButton*>(replyButton(QStringLiteral("editInAPage")))->text(),
              QStringLiteral("Edit in a page"));

    for (const char* name : {"copyResponse", "editInAPage"}) {
        QGuiApplication::clipboard()->setText(QStringLiteral("former"));
        press(replyButton(QLatin1String(name)));
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("# Title\n\nA *word*")) << name;
    }

    // It sends what stands in the field, and without that it does nothing.
    press(replyButton(QStringLiteral("regenerate")));
    EXPECT_EQ(m_viewModel->turns().size(), 2U);
    m_viewModel->setDraft(QStringLiteral("Something else"));
    press(replyButton(QStringLiteral("regenerate")));
    waitForCall();
    EXPECT_EQ(m_provider->calls.back().lastText, QStringLiteral("Something else"));
    reply(QStringLiteral("Fine"));
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
    ask(QStringLiteral("Show"));
    const QString text = QStringLiteral("50 % & more?\nZwei Größen = 1");
    reply(text);
    const auto choose = [this](const QString& name) {
        press(replyButton(QStringLiteral("shareResponse")));
        QMenu* menu = m_panel->findChild<QMenu*>(QStringLiteral("shareMenu"));
        ASSERT_TRUE(menu);
        auto* entry = menu->findChild<QAction*>(name);
        ASSERT_TRUE(entry);
        menu->setActiveAction(entry);
        QTest::keyClick(menu, Qt::Key_Return);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("mailto"), &catcher, "take");
    choose(QStringLiteral("sendByMail"));
    QDesktopServices::unsetUrlHandler(QStringLiteral("mailto"));
    ASSERT_EQ(catcher.urls.size(), 1);
    const QByteArray address = catcher.urls.front().toEncoded();
    const QByteArray body = address.mid(address.indexOf("&body=") + 6);
    EXPECT_EQ(QUrl::fromPercentEncoding(body), QString(text).replace(u'\n', QStringLiteral("\r\n")));

    for (const bool canBeWritten : {true, false}) {
        const QString path =
            m_folder.filePath(canBeWritten ? QStringLiteral("reply.txt") : QStringLiteral("no/folder/reply.txt"));
        choose(QStringLiteral("saveAsTextFile"));
        auto* panel = m_panel->findChild<QFileDialog*>(QStringLiteral("savePanel"));
        ASSERT_TRUE(panel);
        Q_EMIT panel->fileSelected(path);
        delete panel;
        QFile file(path);
        EXPECT_EQ(file.open(QFile::ReadOnly), canBeWritten);
        if (canBeWritten) {
            EXPECT_EQ(QString::fromUtf8(file.readAll()), text + u'\n');
        }
        EXPECT_EQ(m_panel->notice().message().startsWith(QStringLiteral("“reply.txt” could not be saved")),
                  !canBeWritten);
    }
}

TEST_F(AssistantPanelTest, withoutASpeechServiceASentenceSaysSo) {
    qputenv("SPEECHD_ADDRESS", "unix_socket:/nowhere/speechd.sock");
    openPanel();
    ask(QStringLiteral("Say"));
    reply(QStringLiteral("Nothing"));
    press(replyButton(QStringLiteral("readAloud")));
    EXPECT_EQ(m_panel->notice().message(),
              QStringLiteral("Reading aloud needs the desktop’s speech service, which isn’t available."));
    qunsetenv("SPEECHD_ADDRESS");
}

TEST_F(AssistantPanelTest, aChatIsKeptWhenThePanelGoesInTheMiddleOfAQuestion) {
    openPanel();
    ask(QStringLiteral("Still there?"));
    const std::weak_ptr<AssistantViewModel> viewModel = m_viewModel;
    m_panel.reset();
    m_viewModel.reset();
    ASSERT_FALSE(viewModel.expired());
    m_provider->reply(QStringLiteral("Always."));
    EXPECT_TRUE(QTest::qWaitFor([&] { return viewModel.expired(); }));
    const std::vector<ChatSession> kept = ChatHistoryStore::load(m_file.toLocalFile());
    ASSERT_EQ(kept.size(), 1U);
    ASSERT_EQ(kept[0].turns.size(), 2U);
    EXPECT_EQ(kept[0].turns[1].text, QStringLiteral("Always."));

    openPanel();
    EXPECT_TRUE(m_panel->list().bubble(kept[0].turns[1].id));
}

TEST_F(AssistantPanelTest, everyControlHasANameForThoseWhoCantSeeIt) {
    openPanel({{QUuid::createUuid(), AssistantTurn::Role::user, QStringLiteral("Q")},
               {QUuid::createUuid(), AssistantTurn::Role::assistant, QStringLiteral("A")},
               {QUuid::createUuid(), AssistantTurn::Role::error, QStringLiteral("E")}});
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
