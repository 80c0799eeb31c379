#include "TextRecognizer.h"

#include <QLinearGradient>
#include <QPainter>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <chrono>
#include <random>
#include <thread>

#include <gtest/gtest.h>

namespace {

constexpr int dotsPerInch = 150;

QImage paper(QSize size, const QBrush& brush = Qt::white) {
    QImage image(size, QImage::Format_RGB32);
    QPainter(&image).fillRect(image.rect(), brush);
    return image;
}

/// Writes in letters of 12 points; the point is the start of the base line.
void write(QImage& image, QPoint at, const QString& text, const QColor& ink = Qt::black, int pixelSize = 25) {
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(pixelSize);
    painter.setFont(font);
    painter.setPen(ink);
    painter.drawText(at, text);
}

QImage pictureOf(const QString& text) {
    QImage image = paper({500, 100});
    write(image, {40, 60}, text);
    return image;
}

QStringList textsOf(const QImage& image) {
    QStringList texts;
    for (const TextRecognizer::Line& line : TextRecognizer::recognize(image, dotsPerInch))
        texts.append(line.text);
    return texts;
}

TEST(TextRecognizer, ReadsColumnsInOrderAndTellsWhereTheLinesAre) {
    const struct {
        QPoint at;
        QString text;
        int pixelSize = 25;
    } drawn[] = {
        {{80, 90}, QStringLiteral("Minutes of the Meeting"), 46},
        {{80, 200}, QStringLiteral("The members met on Monday")},
        {{80, 240}, QStringLiteral("in the small hall. They agreed")},
        {{80, 280}, QStringLiteral("to spend 4512 euros on paint")},
        {{80, 320}, QStringLiteral("and to ask for three offers.")},
        {{80, 360}, QStringLiteral("Nobody voted against it.")},
        {{560, 200}, QStringLiteral("Work begins in the spring.")},
        {{560, 240}, QStringLiteral("Until then the doors remain")},
        {{560, 280}, QStringLiteral("closed, and visitors have to")},
        {{560, 320}, QStringLiteral("use the entrance at the back.")},
        {{560, 360}, QStringLiteral("Keys are with the secretary.")},
    };
    QImage image = paper({1000, 440});
    for (const auto& line : drawn)
        write(image, line.at, line.text, Qt::black, line.pixelSize);

    const auto lines = TextRecognizer::recognize(image, dotsPerInch);
    ASSERT_EQ(lines.size(), std::size(drawn));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto& [at, text, pixelSize] = drawn[i];
        EXPECT_EQ(lines[i].text.toStdString(), text.toStdString());
        // In pixels from the lower left corner.
        const QRectF box(lines[i].box.x() * 1000, lines[i].box.y() * 440, lines[i].box.width() * 1000,
                         lines[i].box.height() * 440);
        EXPECT_NEAR(box.left(), at.x(), 6) << text.toStdString();
        EXPECT_TRUE(box.top() < 440 - at.y() + 4 && box.top() > 440 - at.y() - 0.5 * pixelSize) << box.top();
        EXPECT_NEAR(box.height(), pixelSize, 0.5 * pixelSize) << text.toStdString();
        EXPECT_TRUE(box.width() > 250 && box.right() < (i == 0 ? 800 : at.x() + 440)) << box.width();
    }
}

TEST(TextRecognizer, ReadsTextOnAnyGround) {
    QImage transparent(500, 100, QImage::Format_ARGB32_Premultiplied);
    transparent.fill(Qt::transparent);
    write(transparent, {40, 60}, QStringLiteral("Black on nothing"));
    EXPECT_EQ(textsOf(transparent), QStringList(QStringLiteral("Black on nothing")));

    QImage dark = paper({500, 200});
    QPainter(&dark).fillRect(QRect(0, 0, 500, 100), QColor(20, 40, 90));
    write(dark, {40, 60}, QStringLiteral("White on blue"), Qt::white);
    write(dark, {40, 160}, QStringLiteral("Black on white"));
    EXPECT_EQ(textsOf(dark), QStringList({QStringLiteral("White on blue"), QStringLiteral("Black on white")}));

    // At the dark end the paper is darker than the ink at the bright end.
    QLinearGradient shadow(0, 0, 0, 600);
    shadow.setColorAt(0, QColor(240, 240, 240));
    shadow.setColorAt(1, QColor(90, 90, 90));
    QImage shaded = paper({500, 600}, shadow);
    QStringList texts;
    for (int y = 60; y < 600; y += 60) {
        texts.append(QStringLiteral("This is the line at %1").arg(y));
        write(shaded, {40, y}, texts.back(), QColor(110 * (700 - y) / 700, 0, 0));
    }
    EXPECT_EQ(textsOf(shaded), texts);
}

TEST(TextRecognizer, FindsNothingWhereNothingIsAndSaysNothing) {
    QImage transparent(40, 40, QImage::Format_ARGB32);
    transparent.fill(Qt::transparent);
    QImage noise = paper({400, 400});
    std::mt19937 random(1);
    for (int y = 0; y < 400; ++y)
        for (int x = 0; x < 400; ++x)
            noise.setPixel(x, y, random() % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    const QImage images[] = {
        QImage(),
        paper({1, 1}),
        paper({1, 300}, Qt::black),
        paper({300, 2}),
        paper({600, 800}),
        paper({600, 800}, Qt::black),
        transparent,
        noise,
        paper({TextRecognizer::maximumSide + 1, 1}),
    };
    testing::internal::CaptureStderr();
    QList<QStringList> found;
    for (const QImage& image : images)
        found.append(textsOf(image));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    for (const QStringList& texts : found)
        EXPECT_EQ(texts.join(u'|').toStdString(), "");
}

TEST(TextRecognizer, ThreadsReadAtTheSameTime) {
    const QString words[] = {QStringLiteral("Northern harbour"), QStringLiteral("Railway station"),
                             QStringLiteral("Botanical garden")};
    QStringList found[std::size(words)];
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::size(words); ++i)
        threads.emplace_back([&found, i, image = pictureOf(words[i])] { found[i] = textsOf(image); });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < std::size(words); ++i)
        EXPECT_EQ(found[i], QStringList(words[i]));
}

TEST(TextRecognizer, StopsWhenAsked) {
    QImage image = paper({1000, 1400});
    std::size_t lineCount = 0;
    for (int y = 60; y < 1400; y += 34, ++lineCount)
        write(image, {40, y}, QStringLiteral("Much more text than could be read in a moment stands here"));
    // Before it begins, while lines are looked for, while they are read.
    for (const int milliseconds : {0, 80, 300}) {
        std::vector<TextRecognizer::Line> lines(1);
        std::jthread thread(
            [&](const std::stop_token& stop) { lines = TextRecognizer::recognize(image, dotsPerInch, stop); });
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        thread.request_stop();
        thread.join();
        EXPECT_TRUE(lines.empty() || lines.size() == lineCount) << "never a part: " << lines.size();
    }
}

TEST(TextRecognizer, WithoutLanguageDataNothingIsRead) {
    const QImage image = pictureOf(QStringLiteral("Botanical garden"));
    const QTemporaryDir empty;
    const QByteArray before = qgetenv("TESSDATA_PREFIX");
    const auto restore =
        qScopeGuard([&] { before.isNull() ? qunsetenv("TESSDATA_PREFIX") : qputenv("TESSDATA_PREFIX", before); });
    qputenv("TESSDATA_PREFIX", empty.path().toLocal8Bit());
    testing::internal::CaptureStderr();
    EXPECT_EQ(textsOf(image), QStringList());
    EXPECT_FALSE(TextRecognizer::hasData());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(TextRecognizer, LanguageDataFollowsTheUserAndEndsWithEnglish) {
    const std::pair<const char*, std::string> rows[] = {
        {"", "eng"},
        {"C", "eng"},
        {"en-GB en", "eng"},
        {"de-AT de fr-CH", "deu fra eng"},
        {"en-US cs-CZ", "eng ces"},
        {"zh-TW", "chi_tra eng"},
        {"zh-CN", "chi_sim eng"},
        {"nb-NO", "nor eng"},
        {"sr-Latn-RS sr-RS", "srp_latn srp eng"},
    };
    for (const auto& [user, names] : rows) {
        const QStringList languages = QString::fromLatin1(user).split(u' ', Qt::SkipEmptyParts);
        EXPECT_EQ(TextRecognizer::languages(languages).join(u' ').toStdString(), names) << user;
    }
}

} // namespace
