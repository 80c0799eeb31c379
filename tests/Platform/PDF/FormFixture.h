#pragma once

#include "PdfFixtures.h"

#include <QRectF>

/// A form of three pages: fields of every kind on the first, none on the second, one text field on the third. All
/// rectangles are page coordinates of 612 by 792 points. Names of fields are those of the rectangles.
namespace FormFixture {

inline const QRectF name(72, 700, 200, 20);    ///< required, called "Your name"
inline const QRectF code(300, 700, 150, 20);   ///< five cells
inline const QRectF link(72, 672, 100, 15);    ///< to the third page
inline const QRectF secret(300, 650, 150, 20); ///< a password
inline const QRectF amount(300, 620, 150, 20); ///< set from the right, up to six characters
inline const QRectF notes(72, 580, 200, 60);   ///< more than one line, up to forty characters
inline const QRectF fixed(300, 590, 150, 20);  ///< read-only, says "unchangeable"
inline const QRectF agree(72, 540, 16, 16);    ///< a box to check, state "Yes"
inline const QRectF small(72, 510, 16, 16);    ///< of the radio group "size", states "small" and "large"
inline const QRectF large(120, 510, 16, 16);
inline const QRectF color(72, 470, 150, 20);  ///< a combo box: red, green, blue, labelled in capitals; red is chosen
inline const QRectF city(300, 470, 150, 20);  ///< a combo box that takes other text: Rome, Oslo
inline const QRectF fruit(72, 370, 150, 80);  ///< a list box for several of apple, banana, cherry, date
inline const QRectF send(300, 370, 100, 24);  ///< a push button with a script
inline const QRectF remark(72, 700, 200, 20); ///< on the third page

/// The first page is turned by `rotation`, and its fields against it, as programs that write forms do.
[[nodiscard]] QByteArray bytes(int rotation = 0);

/// Check boxes and text fields by turns, in rows, `count` on each of the pages.
[[nodiscard]] QByteArray many(int pages, int count);

} // namespace FormFixture
