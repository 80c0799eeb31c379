#pragma once

#include <qpdf/QPDFObjectHandle.hh>

#include <QByteArray>
#include <QRectF>
#include <QTransform>

#include <optional>

/// Scanned pages, which show one picture and nothing else.
namespace OnlyPicture {

struct Picture {
    QPDFObjectHandle image; ///< a stream of the page's file
    QTransform place;       ///< the unit square, in which it stands upright, to page coordinates
    QByteArray paint;       ///< operators that set the colour of a stencil; empty for black
};

/// What the page's content draws, where that is one image XObject and no more; text that can't be seen doesn't count.
/// None for anything else and for whatever can't be told. `shown` is the part of the page that is seen, in page
/// coordinates. Annotations aren't looked at.
[[nodiscard]] std::optional<Picture> on(QPDFObjectHandle page, const QRectF& shown);

} // namespace OnlyPicture
