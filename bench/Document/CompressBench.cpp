// compress_bench FILE OUT: makes a compressed copy at the middle quality.
// compress_bench FILE: prints how long it takes to tell the sizes of the copies, how far that is from them, and how
// much memory all of it took.

#include "CompressedCopy.h"
#include "CompressionEstimate.h"
#include "Measurement.h"
#include "PDFCompressor.h"
#include "PDFDocument.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cmath>
#include <cstdio>
#include <exception>

namespace {

bool compress(const PDFDocument& document, PDFCompressor::Quality quality, const QString& out) {
    const PDFCompressor compressor(document);
    const auto copy = CompressedCopy::of(compressor, quality, {}, [](int) {});
    return copy && copy->write(out, {});
}

int report(const PDFDocument& document) {
    const PDFCompressor compressor(document);
    QElapsedTimer clock;
    clock.start();
    const auto told = CompressionEstimate::of(compressor, {});
    const double time = Measurement::milliseconds(clock.nsecsElapsed());
    if (!told)
        return 1;
    std::printf("{\"job\": \"compress-estimate\", \"ms\": %.0f, \"aim\": \"<= 1000 ms\", \"to_aim\": %.0f}\n", time,
                time - 1000);
    const QTemporaryDir folder;
    for (const PDFCompressor::Quality quality : PDFCompressor::qualities) {
        const QString out = folder.filePath(QStringLiteral("copy.pdf"));
        if (!compress(document, quality, out))
            return 1;
        const auto size = double(QFile(out).size());
        const double error = std::abs(double(told->at(static_cast<std::size_t>(quality))) / size - 1);
        std::printf("{\"job\": \"compress-estimate-%s\", \"bytes\": %.0f, \"error\": %.3f, \"aim\": \"<= 0.15\", "
                    "\"to_aim\": %.3f}\n",
                    qPrintable(PDFCompressor::label(quality).section(u' ', 0, 0).toLower()), size, error, error - 0.15);
    }
    std::printf(
        "{\"job\": \"compress-memory\", \"pages\": %d, \"mb\": %.0f, \"aim\": \"< 300 MB\", \"to_aim\": %.0f}\n",
        document.pageCount(), Measurement::peakMegabytes(), Measurement::peakMegabytes() - 300);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 3) {
        std::fputs("usage: compress_bench FILE [OUT]\n", stderr);
        return 2;
    }
    try {
        const auto document = PDFDocument::fromFile(arguments[1]);
        if (arguments.size() == 2)
            return report(*document);
        return compress(*document, PDFCompressor::Quality::better, arguments[2]) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
