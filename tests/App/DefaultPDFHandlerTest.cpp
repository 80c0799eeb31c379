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
        write(path("xdg-mime"), "#!/bin/sh\n"
                                "cd \"$(dirname \"$0\")\" || exit 1\n"
                                "case \"$1 $2\" in\n"
                                "'query default') [ \"$3\" = application/pdf ] && cat current ;;\n"
                                "default*) [ -e refuse ] && exit 4; echo \"$2\" >current; echo \"$@\" >>log ;;\n"
                                "esac\n");
        QFile::setPermissions(path("xdg-mime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        write(path("current"), "other.desktop\n");
        write(desktopEntry(), "[Desktop Entry]\n");
        qputenv("PATH", QFile::encodeName(m_folder.path()) + ":" + m_oldPath);
    }

    void TearDown() override {
        qputenv("PATH", m_oldPath);
        QFile::remove(desktopEntry());
    }

    QString path(const char* name) const { return m_folder.filePath(QLatin1String(name)); }

    static QString desktopEntry() {
        return QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation) +
               QStringLiteral("/org.quillo.Quillo.desktop");
    }

    QByteArray log() const {
        QFile file(path("log"));
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

    /// How many questions a prompt leads to, with everything that follows from it.
    int prompt() {
        m_questionCount = 0;
        m_handler.promptIfNeeded();
        EXPECT_TRUE(QTest::qWaitFor([this] { return m_handler.children().isEmpty(); }));
        return m_questionCount;
    }

    QTemporaryDir m_folder;
    const QByteArray m_oldPath = qgetenv("PATH");
    UserDefaults m_defaults{path("settings.ini")};
    int m_questionCount = 0;
    bool m_answer = true;
    DefaultPDFHandler m_handler{m_defaults, [this](const std::function<void(bool)>& answered) {
                                    ++m_questionCount;
                                    answered(m_answer);
                                }};
};

TEST_F(DefaultPDFHandlerTest, asksTheDesktopAndTellsIt) {
    EXPECT_EQ(isDefault(), false);
    EXPECT_EQ(answerTo(&DefaultPDFHandler::setAsDefault), true);
    EXPECT_EQ(log(), "default org.quillo.Quillo.desktop application/pdf\n");
    EXPECT_EQ(isDefault(), true);
    write(path("refuse"), "");
    EXPECT_EQ(answerTo(&DefaultPDFHandler::setAsDefault), false);
}

TEST_F(DefaultPDFHandlerTest, theUserIsAskedOnceUnlessItIsTheDefaultViewerOrCannotBeSet) {
    write(path("current"), "org.quillo.Quillo.desktop\n");
    EXPECT_EQ(prompt(), 0);
    write(path("current"), "other.desktop\n");
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
    const QString prompted = QStringLiteral("hasPromptedSetAsDefaultPDFHandler");
    EXPECT_FALSE(m_defaults.contains(prompted)) << "it may be asked later";

    for (const bool answer : {false, true}) {
        m_answer = answer;
        EXPECT_EQ(prompt(), 1);
        EXPECT_EQ(log(), answer ? "default org.quillo.Quillo.desktop application/pdf\n" : "");
        EXPECT_EQ(prompt(), 0);
        m_defaults.removeObject(prompted);
    }
}
