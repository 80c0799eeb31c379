#include "SettingsView.h"

#include "APIKeyStore.h"
#include "SymbolLabel.h"
#include "ViewTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class SettingsViewTest : public ViewTest {
protected:
    void openSettings(SettingsView::DefaultViewer viewer = {}) {
        m_settings = std::make_unique<SettingsView>(m_defaults, std::move(viewer));
        m_settings->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_settings.get()));
        m_url = find<QLineEdit>(*m_settings, u"apiURL"_qs);
        m_key = find<QLineEdit>(*m_settings, u"apiKey"_qs);
    }

    void press(const QString& name) const { QTest::mouseClick(find<QPushButton>(*m_settings, name), Qt::LeftButton); }
    QString status() const { return find<SymbolLabel>(*m_settings, u"status"_qs)->text(); }
    QString statusSymbol() const { return find<SymbolLabel>(*m_settings, u"status"_qs)->symbolName(); }
    bool saysSaved() const { return find<SymbolLabel>(*m_settings, u"saved"_qs)->isVisible(); }
    static void type(QLineEdit* field, const QString& text) {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, text);
    }

    const QString m_builtIn = u"Using Quillo's built-in AI — no key needed"_qs;
    const QString m_own = u"Using your own API key"_qs;
    const QString m_none = u"No active configuration"_qs;
    std::unique_ptr<SettingsView> m_settings;
    QLineEdit* m_url = nullptr;
    QLineEdit* m_key = nullptr;
};

TEST_F(SettingsViewTest, theStatusFollowsKeysAndFields) {
    openSettings();
    EXPECT_EQ(m_url->text(), APIKeyStore::defaultURL());
    EXPECT_EQ(m_url->placeholderText(), u"Enter API URL..."_qs);
    EXPECT_EQ(m_key->placeholderText(), u"Enter API Key..."_qs);
    EXPECT_EQ(m_key->echoMode(), QLineEdit::Password);
    EXPECT_EQ(status(), m_builtIn);
    EXPECT_EQ(statusSymbol(), u"checkmark.circle.fill"_qs);
    EXPECT_FALSE(saysSaved());

    type(m_key, u"  "_qs);
    EXPECT_EQ(status(), m_builtIn) << "Blanks are no key.";
    type(m_key, u"secret"_qs);
    EXPECT_EQ(status(), m_none);
    EXPECT_EQ(statusSymbol(), u"info.circle"_qs);
    type(m_url, u"not a url"_qs);
    press(u"save"_qs);
    EXPECT_EQ(status(), m_own);
    EXPECT_TRUE(saysSaved());
    EXPECT_EQ(m_defaults.stringForKey(u"quillo.customAPIURL"_qs), u"not a url"_qs);
    EXPECT_EQ(m_defaults.stringListForKey(u"quillo.ollamaAPIKeyPool"_qs), QStringList{u"secret"_qs});
    type(m_url, u"http://127.0.0.1/"_qs);
    EXPECT_FALSE(saysSaved());
    EXPECT_EQ(status(), m_own);

    openSettings();
    EXPECT_EQ(status(), m_own);
    EXPECT_EQ(m_url->text(), u"not a url"_qs);
    EXPECT_TRUE(m_key->text().isEmpty());
    type(m_key, u"another"_qs);
    QTest::keyClick(m_key, Qt::Key_Return);
    EXPECT_EQ(m_defaults.stringListForKey(u"quillo.ollamaAPIKeyPool"_qs), QStringList({u"secret"_qs, u"another"_qs}));
}

TEST_F(SettingsViewTest, theBuiltInServiceLeavesNoKeyBehind) {
    m_defaults.setStringList(u"quillo.groqAPIKeyPool"_qs, {u"g"_qs});
    m_defaults.setString(u"vellumark.ollamaAPIKey"_qs, u"old"_qs);
    m_defaults.setString(u"quillo.customAPIURL"_qs, u"http://127.0.0.1/"_qs);
    openSettings();
    EXPECT_EQ(status(), m_own);
    type(m_key, u"typed"_qs);
    press(u"useBuiltInAI"_qs);
    EXPECT_EQ(status(), m_builtIn);
    EXPECT_TRUE(saysSaved());
    EXPECT_TRUE(m_key->text().isEmpty());
    EXPECT_EQ(m_url->text(), APIKeyStore::defaultURL());
    EXPECT_EQ(m_defaults.stringForKey(u"quillo.customAPIURL"_qs), APIKeyStore::defaultURL());
    for (const char* key : {"quillo.ollamaAPIKeyPool", "vellumark.ollamaAPIKey", "quillo.groqAPIKeyPool"})
        EXPECT_FALSE(m_defaults.contains(QLatin1String(key))) << key;

    // An empty key that is saved counts as one, as the store sees it.
    press(u"save"_qs);
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
    auto* set = find<QPushButton>(*m_settings, u"setAsDefault"_qs);
    auto* isDefault = find<SymbolLabel>(*m_settings, u"isDefault"_qs);
    EXPECT_EQ(set->text(), u"Set as Default"_qs);
    press(u"setAsDefault"_qs);
    EXPECT_TRUE(set->isVisible());
    EXPECT_TRUE(find<QLabel>(*m_settings, u"defaultRefused"_qs)->isVisible());
    accepts = true;
    press(u"setAsDefault"_qs);
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(set->isVisible());
    EXPECT_TRUE(isDefault->isVisible());
    EXPECT_EQ(isDefault->text(), u"Quillo is your default"_qs);
    EXPECT_FALSE(find<QLabel>(*m_settings, u"defaultRefused"_qs)->isVisible());

    viewer.isDefault = [](const std::function<void(bool)>& answer) { answer(true); };
    openSettings(viewer);
    EXPECT_TRUE(find<SymbolLabel>(*m_settings, u"isDefault"_qs)->isVisible());

    viewer.isDefault = [](const std::function<void(bool)>& answer) { answer(false); };
    viewer.canBeSet = false;
    openSettings(viewer);
    EXPECT_FALSE(find<QPushButton>(*m_settings, u"setAsDefault"_qs)->isEnabled());

    // The desktop may answer after the window is gone.
    std::function<void(bool)> late;
    viewer.isDefault = [&late](std::function<void(bool)> answer) { late = std::move(answer); };
    openSettings(viewer);
    m_settings.reset();
    late(true);
}
