#include "InvisibleText.h"

#include "GlyphlessFont.h"
#include "PdfValues.h"

#include <QTransform>

QByteArray InvisibleText::line(const QString& text, const QRectF& box, const PDFPageGeometry& page,
                               GlyphlessFont& font) {
    constexpr auto media = PDFDisplayBox::mediaBox;
    const QSizeF shown = page.displaySize(media);
    const double height = box.height() * shown.height();
    if (!(height > 0))
        return {};
    const QByteArray shownText = font.shown(text);
    if (shownText.isEmpty())
        return {};
    const QTransform toPage = page.displayTransform(media).inverted();
    const QPointF start(box.left() * shown.width(), (1 - box.top()) * shown.height());
    const QPointF origin = toPage.map(start);
    const QPointF along = toPage.map(start + QPointF(1, 0)) - origin;
    const QPointF up = toPage.map(start - QPointF(0, 1)) - origin;
    QByteArray object = "BT 3 Tr /F0 " + PdfValues::real(height * sizeOfHeight) + " Tf ";
    for (const QPointF& part : {along, up, origin})
        object += PdfValues::real(part.x()) + ' ' + PdfValues::real(part.y()) + ' ';
    return object + "Tm " + shownText + " ET\n";
}
