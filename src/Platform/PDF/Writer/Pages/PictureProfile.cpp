#include "PictureProfile.h"

#include <QColorSpace>
#include <QColorTransform>
#include <QRgb>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

/// As good as sRGB: many files tell its primaries in numbers, with a power that is close to its curve.
static bool isLikeSRgb(const QColorSpace& space) {
    constexpr float usualPower = 2.2F;
    constexpr int tolerance = 3;
    if (space == QColorSpace(QColorSpace::SRgb))
        return true;
    if (space.transferFunction() != QColorSpace::TransferFunction::Gamma ||
        std::abs(space.gamma() - usualPower) > 0.01F)
        return false;
    const QColorTransform transform = QColorSpace(QColorSpace::SRgb).transformationToColorSpace(space);
    const QRgb corners[] = {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255)};
    return std::all_of(std::begin(corners), std::end(corners), [&transform](QRgb color) {
        const QRgb there = transform.map(color);
        return std::abs(qRed(there) - qRed(color)) <= tolerance &&
               std::abs(qGreen(there) - qGreen(color)) <= tolerance &&
               std::abs(qBlue(there) - qBlue(color)) <= tolerance;
    });
}

QByteArray PictureProfile::fitting(const QByteArray& profile, int components) {
    constexpr qsizetype headerSize = 128;
    const QByteArrayView kind = components == 1 ? "GRAY" : components == 3 ? "RGB " : "CMYK";
    const QByteArrayView bytes(profile);
    const bool fits =
        bytes.size() > headerSize && bytes.sliced(36, 4) == QByteArrayView("acsp") && bytes.sliced(16, 4) == kind;
    return fits ? profile : QByteArray();
}

QByteArray PictureProfile::of(const QColorSpace& space) {
    if (!space.isValid() || isLikeSRgb(space))
        return {};
    return fitting(space.iccProfile(), 3);
}
