#include "MathImage.h"

#include "MTFontV2.h"

#include <memory>

MTMathImageResult MathImage::asImage(double devicePixelRatio) {
    MTMathImage image;
    image.font = std::make_shared<const MTFontV2>(font, fontSize);
    image.fontSize = fontSize;
    image.textColor = textColor;
    image.labelMode = labelMode;
    image.textAlignment = textAlignment;
    image.contentInsets = contentInsets;
    image.latex = latex;
    MTMathImageResult result = image.asImage(devicePixelRatio);
    intrinsicContentSize = image.intrinsicContentSize;
    return result;
}
