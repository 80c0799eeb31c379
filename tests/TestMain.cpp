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

/// The fonts, the locale and the time zone of every run, whatever this machine has: line breaks and widths depend on
/// them. The fonts are those that the program asks its packages for.
static bool bringFontsAndLocale(const QString& home) {
    static constexpr char configuration[] = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts/truetype/dejavu</dir>
  <dir>/usr/share/fonts/truetype/quicksand</dir>
  <dir>/usr/share/fonts/opentype/comic-neue</dir>
  <dir>/usr/share/fonts/opentype/urw-base35</dir>
  <cachedir>/var/cache/fontconfig</cachedir>
  <cachedir prefix="xdg">fontconfig</cachedir>
  <alias><family>serif</family><prefer><family>DejaVu Serif</family></prefer></alias>
  <alias><family>monospace</family><prefer><family>DejaVu Sans Mono</family></prefer></alias>
  <alias binding="same"><family>Helvetica</family><accept><family>Nimbus Sans</family></accept></alias>
  <alias binding="same"><family>Times</family><accept><family>Nimbus Roman</family></accept></alias>
  <alias binding="same"><family>Courier</family><accept><family>Nimbus Mono PS</family></accept></alias>
  <match><edit name="family" mode="append_last"><string>DejaVu Sans</string></edit></match>
</fontconfig>
)";
    QFile file(home + QLatin1String("/fonts.conf"));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration) < 0)
        return false;
    qputenv("FONTCONFIG_FILE", QFile::encodeName(file.fileName()));
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "UTC");
    for (const char* variable : {"LANGUAGE", "QT_FONT_DPI", "QT_SCREEN_SCALE_FACTORS", "QT_STYLE_OVERRIDE",
                                 "QT_QPA_PLATFORMTHEME", "QT_LOGGING_RULES"})
        qunsetenv(variable);
    return true;
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();

    QTemporaryDir home;
    if (!home.isValid() || !moveUserFoldersTo(home.path()) || !bringFontsAndLocale(home.path())) {
        std::fputs("The tests need a writable temporary folder.\n", stderr);
        return 2;
    }
    qputenv("SPEECHD_CMD", "/bin/false"); // no test starts a speech service, which would stay
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
