#include "TextRecognizer.h"

#include "PaperLight.h"

#include <QLocale>
#include <QPainter>

#include <leptonica/allheaders.h>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>

#include <exception>
#include <memory>
#include <mutex>

/// From the OpenMP library that the engine is linked with; its header comes with some compilers only.
extern "C" void omp_set_max_active_levels(int levels);

namespace {

/// The engine and its picture library write what they notice to the standard error output. The settings are those of
/// the whole process, so they are made once, before any thread reads them.
void silenceEngine() {
    static std::once_flag once;
    std::call_once(once, [] {
        tesseract::TessBaseAPI engine;
        engine.SetVariable("debug_file", "/dev/null");
        setMsgSeverity(L_SEVERITY_NONE);
    });
}

/// The engine's own name of the data for a language of `QLocale`; empty for a language that has no code.
QString dataName(const QLocale& locale) {
    switch (locale.language()) {
    case QLocale::Chinese:
        return locale.script() == QLocale::TraditionalChineseScript ? QStringLiteral("chi_tra")
                                                                    : QStringLiteral("chi_sim");
    case QLocale::NorwegianBokmal:
    case QLocale::NorwegianNynorsk:
        return QStringLiteral("nor");
    case QLocale::Serbian:
        return locale.script() == QLocale::LatinScript ? QStringLiteral("srp_latn") : QStringLiteral("srp");
    case QLocale::Uzbek:
        return locale.script() == QLocale::CyrillicScript ? QStringLiteral("uzb_cyrl") : QStringLiteral("uzb");
    case QLocale::Azerbaijani:
        return locale.script() == QLocale::CyrillicScript ? QStringLiteral("aze_cyrl") : QStringLiteral("aze");
    case QLocale::C:
        return {};
    default:
        return QLocale::languageToCode(locale.language(), QLocale::ISO639Part2T);
    }
}

/// Loading the data takes about 60 ms, little beside a page, so every picture gets an engine of its own and nothing is
/// kept between.
bool load(tesseract::TessBaseAPI& engine) {
    // The packaged data has no other recognizer than the neural one.
    const QByteArray names =
        TextRecognizer::languages(QLocale::system().uiLanguages()).join(QLatin1Char('+')).toLatin1();
    if (engine.Init(nullptr, names.constData(), tesseract::OEM_LSTM_ONLY) != 0)
        return false;
    // Pages have columns, headlines and pictures in places that nobody told.
    engine.SetPageSegMode(tesseract::PSM_AUTO);
    return true;
}

std::vector<TextRecognizer::Line> linesOf(tesseract::TessBaseAPI& engine, QSize size) {
    std::vector<TextRecognizer::Line> lines;
    const std::unique_ptr<tesseract::ResultIterator> results(engine.GetIterator());
    if (!results)
        return lines;
    constexpr auto line = tesseract::RIL_TEXTLINE;
    do {
        // Pictures on the page come as lines of blanks.
        const std::unique_ptr<const char[]> utf8(results->GetUTF8Text(line));
        const QString text = QString::fromUtf8(utf8.get()).trimmed();
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        if (text.isEmpty() || !results->BoundingBox(line, &left, &top, &right, &bottom))
            continue;
        const double width = size.width();
        const double height = size.height();
        const QRectF box(left / width, 1 - bottom / height, (right - left) / width, (bottom - top) / height);
        lines.push_back({text, box});
    } while (results->Next(line));
    return lines;
}

std::vector<TextRecognizer::Line> read(const QImage& image, int dotsPerInch, const std::stop_token& stop) {
    const QImage gray = PaperLight::evenOut(TextRecognizer::grayOnWhite(image));
    tesseract::TessBaseAPI engine;
    if (gray.isNull() || stop.stop_requested() || !load(engine))
        return {};
    engine.SetImage(gray.constBits(), gray.width(), gray.height(), 1, static_cast<int>(gray.bytesPerLine()));
    if (dotsPerInch > 0)
        engine.SetSourceResolution(dotsPerInch);
    tesseract::ETEXT_DESC monitor;
    monitor.cancel_this = const_cast<std::stop_token*>(&stop);
    monitor.cancel = [](void* token, int) { return static_cast<const std::stop_token*>(token)->stop_requested(); };
    if (engine.Recognize(&monitor) != 0 || stop.stop_requested())
        return {};
    return linesOf(engine, gray.size());
}

} // namespace

bool TextRecognizer::isReadable(const QImage& image) {
    return !image.isNull() && image.width() <= maximumSide && image.height() <= maximumSide &&
           qint64(image.width()) * image.height() <= maximumPixelCount;
}

QImage TextRecognizer::grayOnWhite(const QImage& image) {
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_Grayscale8);
    QImage gray(image.size(), QImage::Format_Grayscale8);
    if (gray.isNull())
        return gray;
    gray.fill(Qt::white);
    QPainter painter(&gray);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    QImage opaque = image;
    opaque.setDevicePixelRatio(1);
    painter.drawImage(0, 0, opaque);
    return gray;
}

std::vector<TextRecognizer::Line> TextRecognizer::recognize(const QImage& image, int dotsPerInch,
                                                            const std::stop_token& stop) {
    if (!isReadable(image) || stop.stop_requested())
        return {};
    silenceEngine();
    // The engine would share each of its many short steps among four threads, which then wait for each other: on two
    // processors a page took 10.7 s that way and takes 1.8 s on one thread.
    omp_set_max_active_levels(0);
    try {
        return read(image, dotsPerInch, stop);
    } catch (const std::exception&) {
        return {};
    }
}

bool TextRecognizer::hasData() {
    silenceEngine();
    try {
        tesseract::TessBaseAPI engine;
        return load(engine);
    } catch (const std::exception&) {
        return false;
    }
}

QStringList TextRecognizer::languages(const QStringList& uiLanguages) {
    QStringList names;
    for (const QString& language : uiLanguages)
        names.append(dataName(QLocale(language)));
    names.append(QStringLiteral("eng"));
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}
