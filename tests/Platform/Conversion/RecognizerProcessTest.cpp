#include "RecognizerProcess.h"

#include "RecognizerMessage.h"

#include <QPainter>
#include <QScopeGuard>

#include <cmath>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

QImage pictureOf(const QString& text) {
    QImage image(501, 100, QImage::Format_ARGB32_Premultiplied); // rows of the gray picture have gaps
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPixelSize(25);
    painter.setFont(font);
    painter.drawText(QPoint(40, 60), text);
    return image;
}

/// The only line of a picture; "none" without an answer.
std::string recognized(const QString& text, std::chrono::milliseconds limit = RecognizerProcess::timeLimit,
                       const std::stop_token& stop = {}) {
    const auto lines = RecognizerProcess::recognize(pictureOf(text), 150, stop, limit);
    return !lines ? "none" : lines->size() == 1 ? lines->front().text.toStdString() : "blank";
}

} // namespace

TEST(RecognizerProcess, AProgramThatFailsCostsItsPictureOnly) {
    const auto restore = qScopeGuard([] { RecognizerProcess::setCommand({}); });
    // A thread of its own for each command, as that keeps its program.
    const auto with = [](const QByteArrayList& command, const std::function<void()>& work) {
        RecognizerProcess::setCommand(command);
        std::thread(work).join();
    };
    with({RECOGNIZER_CHILD}, [] {
        EXPECT_EQ(recognized(QStringLiteral("First of two")), "First of two");
        EXPECT_EQ(recognized(QString()), "blank");
        EXPECT_EQ(recognized(QStringLiteral("Second of two")), "Second of two");
        EXPECT_EQ(recognized(QStringLiteral("Too late"), 0ms), "none");
        EXPECT_EQ(recognized(QStringLiteral("Another program")), "Another program");
        std::stop_source stop;
        std::jthread stopper([&stop] {
            std::this_thread::sleep_for(5ms);
            stop.request_stop();
        });
        EXPECT_EQ(recognized(QStringLiteral("Stopped"), RecognizerProcess::timeLimit, stop.get_token()), "none");
    });
    const struct {
        const char* what;
        QByteArrayList command;
    } failures[] = {{"missing", {"/no/such/program"}},
                    {"ends at once", {"/bin/false"}},
                    {"crashes", {"/bin/sh", "-c", "kill -SEGV $$"}},
                    {"hangs, taking nothing", {"/bin/sleep", "100"}},
                    {"hangs, taking all", {"/bin/sh", "-c", "cat > /dev/null"}},
                    {"gives back what it gets", {"/bin/cat"}},
                    {"promises too much", {"/bin/sh", "-c", "printf '\\377\\377\\377\\177'; cat > /dev/null"}},
                    {"is cut off", {"/bin/sh", "-c", "printf '\\100\\0\\0\\0abc'"}}};
    for (const auto& [what, command] : failures) {
        SCOPED_TRACE(what);
        with(command, [] { EXPECT_EQ(recognized(QStringLiteral("Words"), 300ms), "none"); });
    }
    with({}, [] { EXPECT_EQ(recognized(QStringLiteral("In the own process")), "In the own process"); });
}

TEST(RecognizerMessage, OnlyWhatCanBeTrueIsTakenForLines) {
    const std::vector<TextRecognizer::Line> lines{{QStringLiteral("Übung macht"), {0.125, 0.5, 0.25, 0.0625}},
                                                  {QStringLiteral("den Meister 一"), {0, 0, 1, 1}}};
    const QByteArray sound = RecognizerMessage::encoded(lines);
    const auto back = RecognizerMessage::decoded(sound);
    ASSERT_TRUE(back && back->size() == 2);
    for (std::size_t i = 0; i < 2; ++i)
        EXPECT_TRUE((*back)[i].text == lines[i].text && (*back)[i].box == lines[i].box);
    EXPECT_TRUE(RecognizerMessage::decoded({})->empty());
    for (const qsizetype size : {1, 39, 45})
        EXPECT_FALSE(RecognizerMessage::decoded(sound.left(size))) << size;
    const QString word = QStringLiteral("x");
    for (const TextRecognizer::Line& bad : {TextRecognizer::Line{word, {0.5, 0, 0.75, 0.5}},
                                            {word, {-0.5, 0, 0.25, 0.5}},
                                            {word, {0, 0, 0.5, NAN}},
                                            {word, {0, INFINITY, 0.5, 0.5}},
                                            {QString(), {0, 0, 1, 1}},
                                            {QStringLiteral(" x"), {0, 0, 1, 1}}})
        EXPECT_FALSE(RecognizerMessage::decoded(RecognizerMessage::encoded({bad})));
    QByteArray badText = RecognizerMessage::encoded({{word, {0, 0, 1, 1}}});
    badText.back() = '\xff';
    EXPECT_FALSE(RecognizerMessage::decoded(badText));
}
