#include "SymbolIcon.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

static QColor darkestColor(const QImage& image) {
    QColor darkest = Qt::transparent;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > darkest.alpha())
                darkest = image.pixelColor(x, y);
        }
    }
    return darkest;
}

TEST(SymbolIcon, everyFileDrawsInTheColorThatIsAskedFor) {
    EXPECT_FALSE(SymbolIcon::pixmap(QStringLiteral("plus"), 24, Qt::black, 1.0).isNull());
    const QStringList files = QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")});
    ASSERT_FALSE(files.isEmpty());
    for (QString name : files) {
        name.chop(4);
        const QPixmap pixmap = SymbolIcon::pixmap(name, 24, QColor(200, 30, 40), 2.0);
        EXPECT_EQ(pixmap.size(), QSize(48, 48));
        EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(24, 24));
        const QColor drawn = darkestColor(pixmap.toImage());
        EXPECT_GT(drawn.alpha(), 200) << name.toStdString();
        EXPECT_NEAR(drawn.red(), 200, 3) << name.toStdString();
        EXPECT_NEAR(drawn.blue(), 40, 3) << name.toStdString();
    }
}

TEST(SymbolIcon, anIconFollowsThePalette) {
    const QIcon icon = SymbolIcon::icon(QStringLiteral("plus"));
    const QPalette former = QGuiApplication::palette();
    for (const QColor& text : {QColor(Qt::white), QColor(10, 20, 30)}) {
        QPalette palette;
        palette.setColor(QPalette::Active, QPalette::ButtonText, text);
        palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::red);
        QGuiApplication::setPalette(palette);
        EXPECT_NEAR(darkestColor(icon.pixmap(32).toImage()).blue(), text.blue(), 3);
        EXPECT_NEAR(darkestColor(icon.pixmap(32, QIcon::Disabled).toImage()).red(), 255, 3);
    }
    QGuiApplication::setPalette(former);
}
