#include "AppTest.h"
#include "PDFEditorWorkspaceView.h"
#include "SettingsView.h"

#include <QToolButton>

class SettingsTest : public AppTest {
protected:
    static QList<QWidget*> settingsWindows() {
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](const QWidget* window) { return !qobject_cast<const SettingsView*>(window); });
        return windows;
    }
};

TEST_F(SettingsTest, allWaysLeadToOneWindow) {
    launch({file(QStringLiteral("a.pdf"))});
    EXPECT_EQ(command(QStringLiteral("settings"))->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Comma));
    command(QStringLiteral("settings"))->trigger();
    settle();
    ASSERT_EQ(settingsWindows().size(), 1);
    const QPointer<QWidget> settings = settingsWindows().front();
    EXPECT_TRUE(settings->isVisible());

    PDFEditorWorkspaceView* workspace = window()->currentContentView()->workspace();
    workspace->setShowsAssistant(true);
    for (const char* name : {"openSettingsButton", "assistantSettingsButton"}) {
        QTest::mouseClick(workspace->findChild<QToolButton*>(QLatin1String(name)), Qt::LeftButton);
        settle();
        EXPECT_EQ(settingsWindows(), QList<QWidget*>{settings.data()}) << name;
    }
    // It doesn't go with the documents, but with Escape.
    command(QStringLiteral("close"))->trigger();
    settle();
    EXPECT_TRUE(settings && settings->isVisible());
    QTest::keyClick(settings, Qt::Key_Escape);
    settle();
    EXPECT_FALSE(settings);
    EXPECT_TRUE(landingIsVisible());
}

TEST_F(SettingsTest, theAskCommandIsInTheMenuOfTheCurrentDocument) {
    launch({file(QStringLiteral("a.pdf"))});
    command(QStringLiteral("askAssistant"))->trigger();
    EXPECT_TRUE(window()->currentContentView()->workspace()->showsAssistant());
    EXPECT_TRUE(command(QStringLiteral("askAssistant"))->isChecked());
    m_app->controller().newDocument();
    settle();
    EXPECT_FALSE(command(QStringLiteral("askAssistant"))->isEnabled()) << "The new tab shows no document.";
}
