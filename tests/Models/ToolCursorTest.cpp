#include "ToolCursor.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

TEST(ToolCursor, everyToolHasItsShapeAndHotSpot) {
    using enum AnnotationTool;
    const struct {
        AnnotationTool tool;
        Qt::CursorShape shape;
        QPoint hotSpot;
    } cases[] = {
        {select, Qt::ArrowCursor, {}},     {ink, Qt::BitmapCursor, {4, 4}},      {rectangle, Qt::CrossCursor, {}},
        {oval, Qt::CrossCursor, {}},       {line, Qt::CrossCursor, {}},          {textBox, Qt::BitmapCursor, {10, 17}},
        {note, Qt::BitmapCursor, {4, 17}}, {eraser, Qt::BitmapCursor, {10, 10}}, {signature, Qt::BitmapCursor, {4, 17}},
        {redact, Qt::CrossCursor, {}},     {form, Qt::CrossCursor, {}},
    };
    for (const auto& each : cases) {
        const QCursor cursor = ToolCursor::cursor(each.tool, 1.0);
        const std::string name = info(each.tool).rawValue.toStdString();
        EXPECT_EQ(cursor.shape(), each.shape) << name;
        if (each.shape != Qt::BitmapCursor)
            continue;
        EXPECT_EQ(cursor.hotSpot(), each.hotSpot) << name;
        EXPECT_TRUE(QRect(QPoint(), cursor.pixmap().size()).contains(each.hotSpot)) << name;
    }
}

TEST(ToolCursor, aBadgeIsBlackWithAWhiteHaloAndSharpOnEveryScreen) {
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        const QPixmap pixmap = ToolCursor::cursor(AnnotationTool::note, ratio).pixmap();
        EXPECT_EQ(pixmap.devicePixelRatio(), ratio);
        EXPECT_NEAR(pixmap.deviceIndependentSize().width(), 21, 0.5);
        const QImage image = pixmap.toImage();
        int black = 0;
        int white = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor color = image.pixelColor(x, y);
                black += color.alpha() > 200 && color.lightness() < 60 ? 1 : 0;
                white += color.alpha() > 60 && color.lightness() > 240 ? 1 : 0;
            }
        }
        EXPECT_GT(black, 20 * ratio * ratio);
        EXPECT_GT(white, 60 * ratio * ratio);
        EXPECT_LT(image.pixelColor(0, 0).alpha(), 160) << "The halo fades out.";
    }
}

TEST(ToolCursor, anUnknownSymbolGivesTheArrow) {
    for (const QString& name :
         {QStringLiteral("no.such.symbol"), QString(), QStringLiteral("../icons/plus") + QChar(0)})
        EXPECT_EQ(ToolCursor::symbolBadge(name, {1, 1}, 1.0).shape(), Qt::ArrowCursor) << name.toStdString();
}
