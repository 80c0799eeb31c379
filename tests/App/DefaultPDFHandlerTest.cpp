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

    /// The answer that comes later to what is called with a place for it.
    std::optional<bool> answerTo(void (DefaultPDFHandler::*call)(std::function<void(bool)>)) {
        std::optional<bool> answer;
        (m_handler.*call)([&answer](bool value) { answer = value; });
        EXPECT_TRUE(QTest::qWaitFor([&answer] { return answer.has_value(); }));
        return answer;
    }

    std::optional<bool> isDefault() { return answerTo(&DefaultPDFHandler::isDefault); }
    std::optional<bool> setAsDefault() { return answerTo(&DefaultPDFHandler::setAsDefault); }

    /// How many questions a prompt leads to, with everything that follows from it.
    int prompt() {
        m_questionCount = 0;
        m_handler.promptIfNeeded();
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_handler.children().isEmpty(); }));
        return m_questionCount;
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
    EXPECT_EQ(isDefault(), false);
    EXPECT_EQ(setAsDefault(), true);
    EXPECT_EQ(log(), "default org.quillo.Quillo.desktop application/pdf\n");
    EXPECT_EQ(isDefault(), true);
    write(m_folder.filePath(QStringLiteral("refuse")), "");
    EXPECT_EQ(setAsDefault(), false);
}

TEST_F(DefaultPDFHandlerTest, theUserIsAskedOnceUnlessItIsTheDefaultViewerOrCannotBeSet) {
    setCurrentViewer("org.quillo.Quillo.desktop\n");
    EXPECT_EQ(prompt(), 0);
    setCurrentViewer("other.desktop\n");
    ASSERT_TRUE(DefaultPDFHandler::canBeSet());
    QFile::remove(desktopEntry());
    EXPECT_FALSE(DefaultPDFHandler::canBeSet());
    EXPECT_EQ(prompt(), 0);
    write(desktopEntry(), "[Desktop Entry]\n");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    EXPECT_FALSE(DefaultPDFHandler::canBeSet());
    EXPECT_EQ(isDefault(), false);
    EXPECT_EQ(prompt(), 0);
    qputenv("PATH", path);
    EXPECT_FALSE(m_defaults.contains(promptedKey())) << "it may be asked later";

    for (const bool answer : {false, true}) {
        m_answer = answer;
        EXPECT_EQ(prompt(), 1);
        EXPECT_EQ(log(), answer ? "default org.quillo.Quillo.desktop application/pdf\n" : "");
        EXPECT_EQ(m_defaults.boolForKey(promptedKey()), true);
        EXPECT_EQ(prompt(), 0);
        m_defaults.removeObject(promptedKey());
    }
}
