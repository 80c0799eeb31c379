#include "MTMathImage.h"

#include "MTFont.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTTypesetter.h"
#include "QuilloAssert.h"

#include <QPainter>

#include <cmath>

namespace {

/// `size` in points. None when it holds no pixel or more than an image can.
std::optional<QImage> blankImage(QSizeF size, double devicePixelRatio) {
    const double width = std::ceil(size.width() * devicePixelRatio);
    const double height = std::ceil(size.height() * devicePixelRatio);
    const bool isEmpty = !(width >= 1) || !(height >= 1);
    if (isEmpty || width > MTMathImage::mostPixelsOfSide || height > MTMathImage::mostPixelsOfSide ||
        width * height > MTMathImage::mostPixels)
        return std::nullopt;
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return std::nullopt;
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

MTMathImageResult MTMathImage::asImage(double devicePixelRatio) {
    QUILLO_ASSERT(font, "An image of a formula is made in a font.");
    MTMathImageResult result;
    const auto list = MTMathListBuilder::build(latex, result.error);
    if (!list)
        return result;

    const MTContentLayout layout{labelMode, textAlignment, contentInsets};
    const std::shared_ptr<const MTFont> sized = font->fontSize() == fontSize ? font : font->copy(fontSize);
    const auto display = MTTypesetter::createLineForMathList(*list, sized, layout.style());
    display->setTextColor(textColor);
    intrinsicContentSize = layout.sizeOf(*display);
    result.layoutInfo = {display->ascent(), display->descent()};

    const QSizeF size(std::ceil(intrinsicContentSize.width()), std::ceil(intrinsicContentSize.height()));
    result.image = blankImage(size, devicePixelRatio);
    if (!result.image)
        return result;
    display->setPosition(layout.positionOf(*display, size, fontSize));
    QPainter painter(&*result.image);
    painter.translate(0, size.height());
    painter.scale(1, -1);
    display->draw(painter);
    return result;
}
