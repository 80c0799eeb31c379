#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <gtest/gtest.h>

// What a test writes through Qt's own paths must not reach the folders of the person who runs it.
TEST(TestHome, everyUserFolderIsTheTestsOwn) {
    const QString testFolder = QFileInfo(QDir::homePath()).path() + QLatin1Char('/');
    QTemporaryFile temporary;
    ASSERT_TRUE(temporary.open());
    const QSettings settings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Quillo"));

    const QString places[] = {
        QDir::tempPath(),
        temporary.fileName(),
        settings.fileName(),
        QStandardPaths::writableLocation(QStandardPaths::ConfigLocation),
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation),
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation),
        QStandardPaths::writableLocation(QStandardPaths::CacheLocation),
        QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
    };
    for (const QString& place : places)
        EXPECT_TRUE(place.startsWith(testFolder)) << place.toStdString();
}
