#include "GrayPicture.h"

QImage GrayPicture::of(const QImage& picture) {
    if (picture.format() != QImage::Format_RGB32)
        return picture.allGray() ? picture.convertToFormat(QImage::Format_Grayscale8) : QImage();
    QImage gray(picture.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < gray.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        uchar* to = gray.scanLine(y);
        QRgb differences = 0; // of the blue from the green, and of the green from the red
        for (int x = 0; x < gray.width(); ++x) {
            differences |= (from[x] ^ (from[x] >> 8)) & 0xFFFFU;
            to[x] = static_cast<uchar>(from[x] & 0xFFU);
        }
        if (differences != 0)
            return {};
    }
    return gray;
}
