#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>

#include <gtest/gtest.h>

/// Points every folder in which the program could keep something below `home`, so that no test reads or changes what
/// belongs to the person who runs it. To be called before the application object exists: Qt reads some of these once.
static bool moveUserFoldersTo(const QString& home) {
    const struct {
        const char* variable;
        QString folder;
    } places[] = {
        {"XDG_CONFIG_HOME", QStringLiteral("config")},
        {"XDG_STATE_HOME", QStringLiteral("state")},
        {"XDG_CACHE_HOME", QStringLiteral("cache")},
        {"XDG_DATA_HOME", QStringLiteral("data")},
        {"XDG_RUNTIME_DIR", QStringLiteral("run")},
        {"TMPDIR", QStringLiteral("tmp")},
        {"HOME", QStringLiteral("home")},
    };
    for (const auto& place : places) {
        const QString path = home + QLatin1Char('/') + place.folder;
        if (!QDir().mkpath(path) || !qputenv(place.variable, QFile::encodeName(path)))
            return false;
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QStandardPaths::setTestModeEnabled(true);
    return true;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();

    QTemporaryDir home;
    if (!home.isValid() || !moveUserFoldersTo(home.path())) {
        std::fputs("The tests need a writable temporary folder.\n", stderr);
        return 2;
    }
    qputenv("SPEECHD_CMD", "/bin/false"); // no test starts a speech service, which would stay
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
