// The developer's program that measures formulas, as it is run.

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(MathMetricsTool, measuresEachLine) {
    QProcess tool;
    tool.start(QStringLiteral(MATH_METRICS), QStringList());
    ASSERT_TRUE(tool.waitForStarted());
    tool.write(R"({"latex": "\\frac12", "style": "display", "size": 100}
{"latex": "\\frac12", "style": "text", "size": 100, "id": 7}
{"latex": "x"}

{"latex": "\\foo"}
{"latex": "x", "style": "small"}
{"latex": "x", "size": 0}
{"style": "text"}
no object
{"latex": ""}
{"latex": "\\dfrac12", "reply": true, "size": 100}
{"latex": "\\cancel{x}", "reply": true})");
    tool.closeWriteChannel();
    ASSERT_TRUE(tool.waitForFinished());
    EXPECT_EQ(tool.exitCode(), 0);
    QList<QJsonObject> lines;
    for (const QByteArray& line : tool.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            lines << QJsonDocument::fromJson(line).object();
    }
    ASSERT_EQ(lines.size(), 11);
    const auto number = [&](int line, const char* key) { return lines[line].value(QLatin1String(key)).toDouble(-1); };
    EXPECT_NEAR(number(0, "ascent"), 134.3, 1e-9);
    EXPECT_NEAR(number(0, "descent"), 68.6, 1e-9);
    EXPECT_NEAR(number(0, "width"), 50, 1e-9);
    EXPECT_NEAR(number(1, "ascent"), 86.02, 1e-9);
    EXPECT_EQ(number(1, "id"), 7);
    EXPECT_NEAR(number(2, "width"), 11.44, 1e-9) << "20 points when nothing is said";
    const QJsonObject unknownCommand{{QStringLiteral("code"), 2},
                                     {QStringLiteral("message"), QStringLiteral("Invalid command \\foo")}};
    EXPECT_EQ(lines[3].value(QLatin1String("error")).toObject(), unknownCommand);
    EXPECT_FALSE(lines[3].contains(QLatin1String("width")));
    for (int line = 4; line < 8; ++line)
        EXPECT_EQ(lines[line].value(QLatin1String("error"))[QLatin1String("code")].toInt(-1), 0) << line;
    EXPECT_EQ(number(8, "width"), 0);
    EXPECT_NEAR(number(9, "width"), 50, 1e-9);
    EXPECT_EQ(lines[10].value(QLatin1String("error"))[QLatin1String("code")].toInt(-1), 0);
}

TEST(MathMetricsTool, drawsIntoAFile) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("rule.png"));
    QProcess tool;
    tool.start(QStringLiteral(MATH_METRICS), QStringList());
    ASSERT_TRUE(tool.waitForStarted());
    for (const QString& image : {file, folder.filePath(QStringLiteral("missing/rule.png"))}) {
        const QJsonObject formula{{QStringLiteral("latex"), QStringLiteral("\\underline{\\frac{1}{2}}")},
                                  {QStringLiteral("image"), image}};
        tool.write(QJsonDocument(formula).toJson(QJsonDocument::Compact) + '\n');
    }
    tool.closeWriteChannel();
    ASSERT_TRUE(tool.waitForFinished());
    const QList<QByteArray> lines = tool.readAllStandardOutput().split('\n');
    EXPECT_FALSE(lines.value(0).contains("error"));
    EXPECT_TRUE(lines.value(1).contains("could not be written"));

    const QImage drawn(file);
    // 50 by 85 points with the margin, black on white.
    EXPECT_EQ(drawn.size(), QSize(139, 236));
    EXPECT_EQ(drawn.pixel(0, 0), qRgb(255, 255, 255));
    int black = 0;
    for (int y = 0; y < drawn.height(); ++y)
        black += qGray(drawn.pixel(drawn.width() / 2, y)) < 64 ? 1 : 0;
    EXPECT_GE(black, 4) << "both rules are in the middle";
}
