// pages_bench: prints how long text files take to become pages, and how much memory that takes.

#include "HtmlPages.h"
#include "Measurement.h"
#include "TextPages.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>

namespace {

constexpr char sentence[] = "Seven quick words make a plain line. ";

QByteArray lines(int count) {
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += QByteArray::number(i) + ' ' + QByteArray(sentence).repeated(1 + i % 3) + '\n';
    return text;
}

bool measure(const char* job, bool (*write)(const QString&, const QString&), const QByteArray& text, double aim) {
    const QTemporaryDir folder;
    QFile source(folder.filePath(QStringLiteral("source")));
    if (!source.open(QIODevice::WriteOnly) || source.write(text) != text.size() || !source.flush())
        return false;
    QElapsedTimer clock;
    clock.start();
    const QString destination = folder.filePath(QStringLiteral("pages.pdf"));
    if (!write(source.fileName(), destination))
        return false;
    const double time = Measurement::milliseconds(clock.nsecsElapsed());
    std::printf(
        "{\"job\": \"%s\", \"bytes\": %lld, \"ms\": %.0f, \"aim\": \"< %.0f ms\", \"to_aim\": %.0f, \"mb\": %.0f}\n",
        job, static_cast<long long>(text.size()), time, aim, time - aim, Measurement::peakMegabytes());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    constexpr qsizetype large = 10'000'000;
    const QByteArray manyLines = lines(130'000).left(large);
    const QByteArray oneLine = QByteArray("{\"key\":[1,2,3]},").repeated(large / 16);
    const bool isDone = measure("text-1000-lines", TextPages::write, lines(1000), 300) &&
                        measure("text-10-mb", TextPages::write, manyLines, 10'000) &&
                        measure("text-10-mb-in-one-line", TextPages::write, oneLine, 10'000) &&
                        measure("html-1-mb", HtmlPages::write, "<p>" + lines(13'000).replace("\n", "<p>"), 10'000);
    return isDone ? 0 : 1;
}
