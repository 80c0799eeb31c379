#include "FontError.h"
#include "MTFontV2.h"
#include "MathFont.h"
#include "MathImage.h"
#include "QuilloAssert.h"

#include <QString>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <vector>

namespace {

const std::vector<MathFont>& installedFonts() {
    static const std::vector<MathFont> installed = [] {
        std::vector<MathFont> fonts;
        for (const MathFont font : allMathFonts) {
            try {
                const MTFontV2 tried(font, 20);
                fonts.push_back(font);
            } catch (const FontError&) { // not on this machine
            }
        }
        return fonts;
    }();
    return installed;
}

} // namespace

/// Draws a formula. The settings are taken from the end of the input, so that a seed can be the plain source.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    MathImage image;
    image.font = installedFonts().at(input.ConsumeIntegralInRange<std::size_t>(0, installedFonts().size() - 1));
    image.fontSize = input.PickValueInArray({20.0, 12.0, 0.5, 72.0});
    image.labelMode = input.ConsumeBool() ? MTMathUILabelMode::text : MTMathUILabelMode::display;
    image.textAlignment =
        input.PickValueInArray({MTTextAlignment::center, MTTextAlignment::left, MTTextAlignment::right});
    const double devicePixelRatio = input.PickValueInArray({1.0, 2.0, 0.25});
    image.latex = QString::fromStdString(input.ConsumeRemainingBytesAsString());

    const MTMathImageResult result = image.asImage(devicePixelRatio);
    QUILLO_ASSERT(result.error.has_value() != result.layoutInfo.has_value(), "A source has an error or is laid out.");
    if (result.error)
        return 0;
    QUILLO_ASSERT(std::isfinite(result.layoutInfo->ascent) && std::isfinite(result.layoutInfo->descent) &&
                      std::isfinite(image.intrinsicContentSize.width()),
                  "A formula has an extent.");
    QUILLO_ASSERT(result.layoutInfo->ascent >= 0 && result.layoutInfo->descent >= 0, "A list reaches its baseline.");
    return 0;
}
