#pragma once

#include <QByteArray>
#include <QSize>

/// Packs black and white as fax machines do (ITU-T T.6). Any thread.
namespace FaxCoder {

/// `rows` holds one bit for a pixel, 1 for white, each row filled up to whole bytes. What comes out is read with the
/// parameter K of -1. Empty when there isn't enough memory.
[[nodiscard]] QByteArray encoded(const QByteArray& rows, QSize size);

} // namespace FaxCoder
