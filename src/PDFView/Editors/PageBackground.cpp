#include "PageBackground.h"

#include "PDFPage.h"
#include "PDFPageRasterizer.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

static constexpr int sampleColumns = 8;
static constexpr int sampleRows = 6;
/// The highest value of a channel of 4 bits.
static constexpr double channelMaximum = 15;

/// Reduces a channel of 8 bits to 4. Pages are drawn with the fractions of a channel cut off (a half is 127), so that a
/// value stands for the step that begins with it.
static int quantised(int channel) {
    return static_cast<int>(std::lround(std::min((channel + 0.5) / 255, 1.0) * channelMaximum));
}

QColor PageBackground::sampleBackgroundColor(const QRectF& rect, const PDFPage& page) {
    const QImage image = PDFPageRasterizer::render(page, 1.0);
    const QRectF mediaBox = page.bounds(PDFDisplayBox::mediaBox);

    std::map<std::array<int, 3>, int> counts; // of quantised red, green and blue
    for (int row = 0; row < sampleRows; ++row) {
        for (int column = 0; column < sampleColumns; ++column) {
            const double pageX = rect.left() + (column + 0.5) / sampleColumns * rect.width();
            const double pageY = rect.top() + (row + 0.5) / sampleRows * rect.height();
            // Pixels are counted from the upper left corner.
            const double x = std::round(pageX - mediaBox.left());
            const double y = std::round(mediaBox.bottom() - pageY);
            if (!(x >= 0 && y >= 0 && x < image.width() && y < image.height()))
                continue;
            const QRgb pixel = image.pixel(static_cast<int>(x), static_cast<int>(y));
            ++counts[{quantised(qRed(pixel)), quantised(qGreen(pixel)), quantised(qBlue(pixel))}];
        }
    }
    if (counts.empty())
        return Qt::white;
    const auto& [red, green, blue] = std::max_element(counts.begin(), counts.end(), [](const auto& a, const auto& b) {
                                         return a.second < b.second;
                                     })->first;
    const auto channel = [](int level) { return static_cast<float>(level / channelMaximum); };
    return QColor::fromRgbF(channel(red), channel(green), channel(blue));
}

QColor PageBackground::contrastingTextColor(const QColor& background) {
    const double luminance = 0.299 * background.redF() + 0.587 * background.greenF() + 0.114 * background.blueF();
    return luminance < 0.5 ? Qt::white : Qt::black;
}
