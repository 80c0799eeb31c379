#include "ImageKeys.h"

QByteArray ImageKeys::of(QSize pixels, int bitsPerSample, const QByteArray& colorSpace) {
    QByteArray keys = " /Type /XObject /Subtype /Image /Width " + QByteArray::number(pixels.width()) + " /Height " +
                      QByteArray::number(pixels.height()) + " /BitsPerComponent " + QByteArray::number(bitsPerSample);
    if (!colorSpace.isEmpty())
        keys += " /ColorSpace " + colorSpace;
    return keys;
}

QByteArray ImageKeys::predictor(int columns, int components, int bitsPerSample) {
    return " /DecodeParms << /Predictor 15 /Colors " + QByteArray::number(components) + " /BitsPerComponent " +
           QByteArray::number(bitsPerSample) + " /Columns " + QByteArray::number(columns) + " >>";
}

QByteArray ImageKeys::palette(const QByteArray& entries) {
    return "[/Indexed /DeviceRGB " + QByteArray::number(entries.size() / 3 - 1) + " <" + entries.toHex() + ">]";
}
