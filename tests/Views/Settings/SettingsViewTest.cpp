#include "SettingsView.h"

#include "APIKeyStore.h"
#include "BackendAIProvider.h"
#include "RecoverySetting.h"
#include "SymbolLabel.h"
#include "ViewTest.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class SettingsViewTest : public ViewTest {
protected:
    void openSettings(SettingsView::DefaultViewer viewer = {}) {
        m_settings = std::make_unique<SettingsView>(m_defaults, std::move(viewer));
        m_settings->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_settings.get()));
        m_url = find<QLineEdit>(*m_settings, QStringLiteral("apiURL"));
        m_key = find<QLineEdit>(*m_settings, QStringLiteral("apiKey"));
    }

    void press(const QString& name) const { QTest::mouseClick(find<QPushButton>(*m_settings, name), Qt::LeftButton); }
    QString status() const { return find<SymbolLabel>(*m_settings, QStringLiteral("status"))->text(); }
    QString statusSymbol() const { return find<SymbolLabel>(*m_settings, QStringLiteral("status"))->symbolName(); }
    /// What stands beneath the status; empty when nothing does.
    QString note() const {
        const auto* label = find<QLabel>(*m_settings, QStringLiteral("statusNote"));
        const int lineCount = label->fontMetrics().horizontalAdvance(label->text()) / label->width() + 1;
        EXPECT_TRUE(label->isHidden() || label->height() / label->fontMetrics().height() == lineCount);
        return label->isVisible() ? label->text() : QString();
    }
    bool saysSaved() const { return find<SymbolLabel>(*m_settings, QStringLiteral("saved"))->isVisible(); }
    static void type(QLineEdit* field, const QString& text) {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, text);
    }

    const QString m_builtIn = QStringLiteral("Using Quillo's built-in AI — no key needed");
    const QString m_own = QStringLiteral("Using your own API key");
    const QString m_none = QStringLiteral("No active configuration");
    const QString m_noService =
        BackendAIProvider::isConfigured()
            ? QString()
            : QStringLiteral("This copy of Quillo has no built-in AI service: enter a key of your own above and save "
                             "it to use the assistant.");
    std::unique_ptr<SettingsView> m_settings;
    QLineEdit* m_url = nullptr;
    QLineEdit* m_key = nullptr;
};

TEST_F(SettingsViewTest, unsavedChangesAreKeptUnlessTheUserTurnsItOff) {
    openSettings();
    for (const bool isOn : {false, true, false}) {
        QTest::keyClick(find<QCheckBox>(*m_settings, QStringLiteral("keepsUnsavedChanges")), Qt::Key_Space);
        EXPECT_EQ(RecoverySetting::isOn(m_defaults), isOn);
    }
    openSettings();
    EXPECT_FALSE(find<QCheckBox>(*m_settings, QStringLiteral("keepsUnsavedChanges"))->isChecked());
}

TEST_F(SettingsViewTest, theStatusFollowsKeysAndFields) {
    openSettings();
    EXPECT_EQ(m_url->text(), APIKeyStore::defaultURL());
    EXPECT_EQ(m_url->placeholderText(), QStringLiteral("Enter API URL..."));
    EXPECT_EQ(m_key->placeholderText(), QStringLiteral("Enter API Key..."));
    EXPECT_EQ(m_key->echoMode(), QLineEdit::Password);
    EXPECT_EQ(status(), m_builtIn);
    EXPECT_EQ(statusSymbol(), QStringLiteral("checkmark.circle.fill"));
    EXPECT_FALSE(saysSaved());

    EXPECT_EQ(note(), m_noService);

    type(m_key, QStringLiteral("  "));
    EXPECT_EQ(status(), m_builtIn) << "Blanks are no key.";
    type(m_key, QStringLiteral("secret"));
    EXPECT_EQ(status(), m_none);
    EXPECT_EQ(statusSymbol(), QStringLiteral("info.circle"));
    EXPECT_EQ(note(), QString());
    type(m_url, QStringLiteral("not a url"));
    press(QStringLiteral("save"));
    EXPECT_EQ(status(), m_own);
    EXPECT_TRUE(saysSaved());
    EXPECT_EQ(note(), QStringLiteral("Your key is used in documents that you open from now on."));
    EXPECT_EQ(m_defaults.stringForKey(QStringLiteral("quillo.customAPIURL")), QStringLiteral("not a url"));
    EXPECT_EQ(m_defaults.stringListForKey(QStringLiteral("quillo.ollamaAPIKeyPool")),
              QStringList{QStringLiteral("secret")});
    type(m_url, QStringLiteral("http://127.0.0.1/"));
    EXPECT_FALSE(saysSaved());
    EXPECT_EQ(note(), QString());
    EXPECT_EQ(status(), m_own);

    openSettings();
    EXPECT_EQ(status(), m_own);
    EXPECT_EQ(m_url->text(), QStringLiteral("not a url"));
    EXPECT_TRUE(m_key->text().isEmpty());
    find<QPushButton>(*m_settings, QStringLiteral("save"))->setFocus();
    type(m_key, QStringLiteral("another"));
    QTest::keyClick(m_key, Qt::Key_Return);
    EXPECT_EQ(m_defaults.stringListForKey(QStringLiteral("quillo.ollamaAPIKeyPool")),
              QStringList({QStringLiteral("secret"), QStringLiteral("another")}));
    EXPECT_EQ(note(), QString()) << "Open documents that have keys take this one too.";
}

TEST_F(SettingsViewTest, theBuiltInServiceLeavesNoKeyBehind) {
    m_defaults.setStringList(QStringLiteral("quillo.groqAPIKeyPool"), {QStringLiteral("g")});
    m_defaults.setString(QStringLiteral("vellumark.ollamaAPIKey"), QStringLiteral("old"));
    m_defaults.setString(QStringLiteral("quillo.customAPIURL"), QStringLiteral("http://127.0.0.1/"));
    openSettings();
    EXPECT_EQ(status(), m_own);
    type(m_key, QStringLiteral("typed"));
    press(QStringLiteral("useBuiltInAI"));
    EXPECT_EQ(status(), m_builtIn);
    EXPECT_TRUE(saysSaved());
    EXPECT_EQ(note(), m_noService.isEmpty()
                          ? QStringLiteral("Quillo's AI answers in documents that you open from now on.")
                          : m_noService);
    EXPECT_TRUE(m_key->text().isEmpty());
    EXPECT_EQ(m_url->text(), APIKeyStore::defaultURL());
    EXPECT_EQ(m_defaults.stringForKey(QStringLiteral("quillo.customAPIURL")), APIKeyStore::defaultURL());
    for (const char* key : {"quillo.ollamaAPIKeyPool", "vellumark.ollamaAPIKey", "quillo.groqAPIKeyPool"})
        EXPECT_FALSE(m_defaults.contains(QLatin1String(key))) << key;

    // An empty key that is saved counts as one, as the store sees it.
    press(QStringLiteral("save"));
    openSettings();
    EXPECT_EQ(status(), m_own);
}

TEST_F(SettingsViewTest, theDefaultViewerIsShownAndSet) {
    bool accepts = false;
    int asked = 0;
    SettingsView::DefaultViewer viewer;
    viewer.canBeSet = true;
    viewer.isDefault = [](const std::function<void(bool)>& answer) { answer(false); };
    viewer.setAsDefault = [&](const std::function<void(bool)>& completion) {
        ++asked;
        completion(accepts);
    };
    openSettings(viewer);
    auto* set = find<QPushButton>(*m_settings, QStringLiteral("setAsDefault"));
    auto* isDefault = find<SymbolLabel>(*m_settings, QStringLiteral("isDefault"));
    EXPECT_EQ(set->text(), QStringLiteral("Set as Default"));
    press(QStringLiteral("setAsDefault"));
    EXPECT_TRUE(set->isVisible());
    EXPECT_TRUE(find<QLabel>(*m_settings, QStringLiteral("defaultRefused"))->isVisible());
    accepts = true;
    press(QStringLiteral("setAsDefault"));
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(set->isVisible());
    EXPECT_TRUE(isDefault->isVisible());
    EXPECT_EQ(isDefault->text(), QStringLiteral("Quillo is your default"));
    EXPECT_FALSE(find<QLabel>(*m_settings, QStringLiteral("defaultRefused"))->isVisible());

    viewer.isDefault = [](const std::function<void(bool)>& answer) { answer(true); };
    openSettings(viewer);
    EXPECT_TRUE(find<SymbolLabel>(*m_settings, QStringLiteral("isDefault"))->isVisible());

    viewer.isDefault = [](const std::function<void(bool)>& answer) { answer(false); };
    viewer.canBeSet = false;
    openSettings(viewer);
    EXPECT_FALSE(find<QPushButton>(*m_settings, QStringLiteral("setAsDefault"))->isEnabled());

    // The desktop may answer after the window is gone.
    std::function<void(bool)> late;
    viewer.isDefault = [&late](std::function<void(bool)> answer) { late = std::move(answer); };
    openSettings(viewer);
    m_settings.reset();
    late(true);
}
