#include "DefaultPDFHandler.h"

#include "UserDefaults.h"

#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

#include <gtest/gtest.h>

namespace {

QString promptedKey() {
    return QStringLiteral("hasPromptedSetAsDefaultPDFHandler");
}

void write(const QString& path, const QByteArray& content) {
    QFile file(path);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(content);
}

} // namespace

/// Puts a desktop's `xdg-mime` in front of the real one: it keeps the default viewer in a file and logs what is set.
class DefaultPDFHandlerTest : public testing::Test {
protected:
    void SetUp() override {
        write(program(), "#!/bin/sh\n"
                         "cd \"$(dirname \"$0\")\" || exit 1\n"
                         "case \"$1 $2\" in\n"
                         "'query default') [ \"$3\" = application/pdf ] && cat current ;;\n"
                         "default*) [ -e refuse ] && exit 4; echo \"$2\" >current; echo \"$@\" >>log ;;\n"
                         "esac\n");
        QFile::setPermissions(program(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        setCurrentViewer("other.desktop\n");
        write(desktopEntry(), "[Desktop Entry]\n");
        qputenv("PATH", QFile::encodeName(m_folder.path()) + ":" + m_oldPath);
    }

    void TearDown() override {
        qputenv("PATH", m_oldPath);
        QFile::remove(desktopEntry());
    }

    QString program() const { return m_folder.filePath(QStringLiteral("xdg-mime")); }

    static QString desktopEntry() {
        return QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation) +
               QStringLiteral("/org.quillo.Quillo.desktop");
    }

    void setCurrentViewer(const QByteArray& name) { write(m_folder.filePath(QStringLiteral("current")), name); }

    QByteArray log() const {
        QFile file(m_folder.filePath(QStringLiteral("log")));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    bool isDefault() {
        std::optional<bool> answer;
        m_handler.isDefault([&answer](bool value) { answer = value; });
        EXPECT_TRUE(QTest::qWaitFor([&answer] { return answer.has_value(); }));
        return answer.value_or(false);
    }

    /// Prompts and lets everything that follows from it happen.
    void prompt() {
        m_handler.promptIfNeeded();
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_handler.children().isEmpty(); }));
    }

    QTemporaryDir m_folder;
    const QByteArray m_oldPath = qgetenv("PATH");
    UserDefaults m_defaults{m_folder.filePath(QStringLiteral("settings.ini"))};
    int m_questionCount = 0;
    bool m_answer = true;
    DefaultPDFHandler m_handler{m_defaults, [this](const std::function<void(bool)>& answered) {
                                    ++m_questionCount;
                                    answered(m_answer);
                                }};
};

TEST_F(DefaultPDFHandlerTest, asksTheDesktopAndTellsIt) {
    EXPECT_FALSE(isDefault());
    std::optional<bool> succeeded;
    m_handler.setAsDefault([&succeeded](bool value) { succeeded = value; });
    ASSERT_TRUE(QTest::qWaitFor([&succeeded] { return succeeded.has_value(); }));
    EXPECT_TRUE(*succeeded);
    EXPECT_EQ(log(), "default org.quillo.Quillo.desktop application/pdf\n");
    EXPECT_TRUE(isDefault());

    write(m_folder.filePath(QStringLiteral("refuse")), "");
    succeeded.reset();
    m_handler.setAsDefault([&succeeded](bool value) { succeeded = value; });
    ASSERT_TRUE(QTest::qWaitFor([&succeeded] { return succeeded.has_value(); }));
    EXPECT_FALSE(*succeeded);
}

TEST_F(DefaultPDFHandlerTest, isAskedOnceWhateverTheAnswer) {
    m_answer = false;
    prompt();
    prompt();
    EXPECT_EQ(m_questionCount, 1);
    EXPECT_EQ(log(), "");
    EXPECT_EQ(m_defaults.boolForKey(promptedKey()), true);
}

TEST_F(DefaultPDFHandlerTest, theFirstButtonSetsIt) {
    prompt();
    EXPECT_EQ(m_questionCount, 1);
    EXPECT_EQ(log(), "default org.quillo.Quillo.desktop application/pdf\n");
}

TEST_F(DefaultPDFHandlerTest, theDefaultViewerIsNotAskedAndMayBeLater) {
    setCurrentViewer("org.quillo.Quillo.desktop\n");
    prompt();
    EXPECT_EQ(m_questionCount, 0);
    EXPECT_FALSE(m_defaults.contains(promptedKey()));
    setCurrentViewer("other.desktop\n");
    prompt();
    EXPECT_EQ(m_questionCount, 1);
}

TEST_F(DefaultPDFHandlerTest, withoutAWayToSetItThereIsNoQuestion) {
    const auto expectNoQuestion = [this] {
        EXPECT_FALSE(DefaultPDFHandler::canBeSet());
        prompt();
        EXPECT_EQ(m_questionCount, 0);
        EXPECT_FALSE(m_defaults.contains(promptedKey()));
    };
    ASSERT_TRUE(DefaultPDFHandler::canBeSet());
    QFile::remove(desktopEntry());
    expectNoQuestion();

    write(desktopEntry(), "[Desktop Entry]\n");
    qputenv("PATH", "/nowhere");
    expectNoQuestion();
    EXPECT_FALSE(isDefault());
}
