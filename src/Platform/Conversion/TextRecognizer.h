#pragma once

#include <QImage>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <stop_token>
#include <vector>

/// Reads the text in a picture. Any thread; several may read at once.
namespace TextRecognizer {

/// A longer side or more pixels than these give no lines.
inline constexpr int maximumSide = 32767;
inline constexpr qint64 maximumPixelCount = qint64(128) * 1024 * 1024;

struct Line {
    /// Never blank, without white space at its ends.
    QString text;
    /// Where the line lies, as fractions of the picture's width and height, 0-1: origin at the lower left corner, y up,
    /// so that `top()` is the lower edge.
    QRectF box;
};

/// The lines of a page in reading order, column after column, words corrected by the dictionaries of `languages`.
/// White text on dark ground is read too; transparent parts count as white paper. `dotsPerInch` is the resolution at
/// which the page was scanned or drawn; 0 when nobody knows, and then it is guessed.
///
/// Takes a second or two for a full page, on one processor. `stop` makes it return soon with no lines; finding the
/// columns and lines, a fifth of the time or less, isn't interrupted.
///
/// Empty for a picture without text. Nothing tells it from a failure: a null or too large picture, no data for any of
/// the languages, not enough memory.
[[nodiscard]] std::vector<Line> recognize(const QImage& image, int dotsPerInch, const std::stop_token& stop = {});

/// Neither null nor larger than the above.
[[nodiscard]] bool isReadable(const QImage& image);

/// The picture as the engine takes it (`Format_Grayscale8`). Null for want of memory.
[[nodiscard]] QImage grayOnWhite(const QImage& image);

/// False when no data is installed for any of the languages that are read, so that no picture has lines. Any thread;
/// takes up to a tenth of a second.
[[nodiscard]] bool hasData();

/// The names of the language data for a person who reads `uiLanguages` ("de-AT", "en", as `QLocale` gives them), the
/// most wanted first and English always among them: "deu", "eng". Those that aren't installed are passed over when
/// reading.
[[nodiscard]] QStringList languages(const QStringList& uiLanguages);

} // namespace TextRecognizer
