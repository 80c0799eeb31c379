#include "ConverterProcess.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <chrono>
#include <stop_token>
#include <thread>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(ConverterProcess, AFileThatAProgramFailsAtCostsThatFileOnly) {
    const auto restore = qScopeGuard([] { ConverterProcess::setCommand({}); });
    const QTemporaryDir folder;
    const QString source = folder.filePath(QStringLiteral("Bild «1».png"));
    const QString own = folder.filePath(QStringLiteral("own"));
    const QString destination = own + QStringLiteral("/Bild «1».pdf");
    ASSERT_TRUE(QDir().mkdir(own));
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(source));

    const struct {
        const char* what;
        QByteArrayList command;
        bool isConverted;
    } programs[] = {{"own process", {}, true},
                    {"works", {CONVERTER_CHILD}, true},
                    {"missing", {"/no/such/program"}, false},
                    {"ends at once", {"/bin/false"}, false},
                    {"writes nothing", {"/bin/true"}, false},
                    {"crashes", {"/bin/sh", "-c", "echo > \"$2\"; kill -SEGV $$"}, false},
                    {"hangs", {"/bin/sh", "-c", "echo > \"$2\"; sleep 100"}, false},
                    {"takes memory", {"/usr/bin/perl", "-e", "$x = 'a' x 3e9; open F, '>', $ARGV[2]"}, false}};
    for (const auto& [what, command, isConverted] : programs) {
        SCOPED_TRACE(what);
        ConverterProcess::setCommand(command);
        const auto limit = isConverted ? ConverterProcess::timeLimit : 500ms;
        EXPECT_EQ(ConverterProcess::convert(ConverterProcess::Kind::picture, source, destination, {}, limit),
                  isConverted);
        EXPECT_EQ(QDir(own).entryList(QDir::Files).size(), isConverted ? 1 : 0);
        QFile::remove(destination);
    }
    ConverterProcess::setCommand({"/bin/sh", "-c", "echo > \"$2\"; sleep 100"});
    std::stop_source stop;
    const std::jthread stopper([&stop] {
        std::this_thread::sleep_for(50ms);
        stop.request_stop();
    });
    EXPECT_FALSE(ConverterProcess::convert(ConverterProcess::Kind::picture, source, destination, stop.get_token()));
    EXPECT_TRUE(QDir(own).isEmpty());
}
