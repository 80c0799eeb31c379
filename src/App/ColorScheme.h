#pragma once

#include <QObject>

class QPalette;

/// Follows the desktop's choice between light and dark where nothing else does: with Qt's own style and colours. The
/// desktop is asked in the background, so a start never waits for it. Main thread only.
class ColorScheme : public QObject {
    Q_OBJECT

public:
    explicit ColorScheme(QObject* parent = nullptr);
    ~ColorScheme() override;

    /// Asks the desktop and follows its answer, now and whenever it changes. Does nothing when a platform theme has
    /// chosen style or colours already.
    void follow();

    /// Gives the application the dark palette, or the one that it had.
    static void setDark(bool dark);

    [[nodiscard]] static QPalette darkPalette();

private Q_SLOTS:
    void desktopSettingChanged(const QString& group, const QString& key);

private:
    void ask();
};
