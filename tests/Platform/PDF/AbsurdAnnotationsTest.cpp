#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

namespace {

/// Keys of annotations as no program should write them. "SELF" stands for a reference to the annotation.
QByteArrayList absurdities() {
    const QByteArray huge = '1' + QByteArray(30, '0') + ".0";
    const QByteArray wild = "/Rect [-" + huge + " 1e30 9223372036854775807 " + huge + "] /C [1 0 0] ";
    const QByteArray box = "/Rect [20 20 180 180] /C [1 0 0] ";
    QByteArrayList all;
    for (const QByteArray type : {"Square", "Circle", "Line", "Ink", "Highlight", "Underline", "StrikeOut", "FreeText",
                                  "Text", "Stamp", "Polygon", "Widget", "Link", "Popup", "FileAttachment", "Acme"}) {
        all << "/Subtype /" + type; // nothing else
        all << "/Subtype /" + type + ' ' + wild + "/Contents (wild) /BS << /S /D /D [0.001] /W " + huge + " >>";
        all << "/Subtype /" + type + ' ' + box +
                   "/AP 7 /BS [1 2] /Border (x) /Contents [] /F (print) /M << >> /T 5 /CA /Half /IC [0 1] /DA 3 /DS 4 "
                   "/QuadPoints << >> /InkList 8 /L (a b) /LE 9 /Vertices null /FS 0 /MK [] /A [] /Dest 1.5";
        all << "/Subtype /" + type + ' ' + box +
                   "/AP << /N [1 2] /D SELF >> /AS [] /Popup SELF /IRT SELF /Parent SELF "
                   "/Kids [SELF SELF] /P SELF /OC SELF";
    }
    all << "/Subtype 12 " + box << box << "/Subtype /Square /C [1 0 0] /Rect [10 10 90]"
        << "/Subtype /Square /C [1 2 3 4 5] /Rect [(a) /b null true]"
        << "/Subtype /Square /BS << /W -5 /S /Zigzag >> /Border [0 0 -1 [-2 0]] " + box
        << "/Subtype /Square /BS << /S /D /D [" + QByteArray("0 ").repeated(1000) + "] >> " + box
        << "/Subtype /Circle /CA -4 /IC [9 -9 " + huge + "] " + box
        << "/Subtype /Highlight /QuadPoints [1 2 3 4 5 6 7] " + box
        << "/Subtype /Highlight /QuadPoints [1e30 2 3 -" + huge + " 5 (x) 7 null 9] " + box
        << "/Subtype /Underline /QuadPoints [" + QByteArray("20 40 90 40 20 20 90 20 ").repeated(20000) + "] " + box
        << "/Subtype /Ink /InkList [1 (a) null [] [[1 2]] [5] [20 20 (x) 90]] " + box
        << "/Subtype /Ink /InkList [[" + QByteArray("20 20 22 21 21 23 ").repeated(33400) +
               "]] /BS << /S /D /D [1] >> " + box
        << "/Subtype /Ink /InkList [" + QByteArray("[20 20 90 90]").repeated(3000) + "] " + box
        << "/Subtype /Line /L [3] /LE [/Feather /ClosedArrow /None] " + box
        << "/Subtype /Line /L [20 20 " + huge + " -" + huge + "] /LE [null 4] /BS << /S /D /D [0.01 0.01] >> " + box
        << "/Subtype /FreeText /DA (/ 0 Tf -" + huge +
               " Tf 9 9 9 9 rg /F 99999 Tf) /DS (font: ;;:: 'a) /Contents (free) " + box
        << "/Subtype /FreeText /DA (/Helv 500 Tf) /Contents (" + QByteArray("long ").repeated(20000) + ") " + box
        << "/Subtype /Widget /FT /Tx /Ff " + huge + " /V [1] /MaxLen -3 /Opt (x) /MK << /R 37 /BG [1 2] >> " + box
        << "/Subtype /Ink /Rect (no) /InkList [[1] null [1 2 3] (x)] /BS << /W -5e30 /D [] /S /D >>"
        << "/Subtype /Line /L [1 2] /LE /Butt /C [1 2 3 4 5 6] /Border [0 0]"
        << "/Subtype /Widget /FT 7 /Ff (x) /V [1 2] /Parent 99999 0 R /MK null /DA (Tf Tf / 9 Tf rg)"
        << "/Subtype /Acme /Rect [1e39 0 0 -1e39] /QuadPoints [1 2 3] /M (D:99999999999999)"
        << "/Subtype /Widget /FT /Btn /AS /Elsewhere /V << >> /AP << /N << /On 4 >> >> " + box;
    return all;
}

/// Each annotation among entries that are none, on a page of its own; then a page of another kind, large when a save is
/// to append.
QByteArray fileOf(const QByteArrayList& absurdities, bool large) {
    PdfFixture pdf;
    for (int page = 0; page < absurdities.size(); ++page) {
        pdf.addPage({QStringLiteral("Words")}, {200, 200});
        pdf.addAnnotation(page, "null");
        const QByteArray annotation = pdf.reserveObject();
        pdf.fillObject(annotation, "<< /Type /Annot /Mark (kept " + QByteArray::number(page) + ") " +
                                       QByteArray(absurdities[page]).replace("SELF", annotation) + " >>");
        pdf.appendToArray(pdf.pageReference(page), "/Annots", annotation);
        pdf.appendToArray(pdf.pageReference(page), "/Annots", "42");
    }
    pdf.addPage({});
    if (large)
        pdf.setPageKey(static_cast<int>(absurdities.size()), "/Bulk",
                       pdf.addStream("<< >>", QByteArray(3'000'000, 'x')));
    return pdf.bytes();
}

void drawAndRead(const PDFPage& page) {
    EXPECT_FALSE(page.thumbnail({120, 120}, PDFDisplayBox::cropBox).isNull());
    QImage image(200, 200, QImage::Format_RGB32);
    QPainter painter(&image);
    page.draw(PDFDisplayBox::mediaBox, painter);
    for (const auto& annotation : page.annotations()) {
        annotation->draw(PDFDisplayBox::mediaBox, painter); // also what the engine draws as a rule
        (void)annotation->drawnArea();
        (void)annotation->destination();
        (void)page.annotation(annotation->bounds().center());
    }
}

void change(const PDFPage& page) {
    for (const auto& annotation : page.annotations()) {
        annotation->setColor(QColor(Qt::blue));
        annotation->setContents(QStringLiteral("changed"));
        annotation->setBorder(PDFBorder{3, PDFBorderStyle::dashed, {2, 1}});
        annotation->setFontColor(QColor(Qt::red));
        annotation->setWidgetStringValue(QStringLiteral("value"));
    }
}

/// Whether the annotations themselves are changed too, or only something else on their pages.
class AbsurdAnnotationsTest : public testing::TestWithParam<bool> {};

} // namespace

TEST_P(AbsurdAnnotationsTest, AreDrawnIfTheyCanBeAndKeptInAnyCase) {
    const QByteArrayList all = absurdities();
    for (const bool append : {true, false}) {
        const QByteArray before = fileOf(all, append);
        const auto document = PDFDocument::fromData(before);
        for (int page = 0; page < all.size(); ++page) {
            SCOPED_TRACE(all[page].left(200).toStdString());
            drawAndRead(*document->page(page));
            if (GetParam())
                change(*document->page(page));
            document->page(page)->addAnnotation(
                std::make_shared<PDFAnnotation>(QRectF(5, 5, 10, 10), PDFAnnotationSubtype::square));
        }
        if (!append)
            document->removePage(document->pageCount() - 1);
        const QByteArray file = document->dataRepresentation();
        EXPECT_EQ(file.startsWith(before), append);
        const QByteArray unpacked = PdfPrograms::unpacked(file);
        const auto again = PDFDocument::fromData(file);
        for (int page = 0; page < all.size(); ++page) {
            SCOPED_TRACE(all[page].left(200).toStdString());
            EXPECT_EQ(unpacked.count("(kept " + QByteArray::number(page) + ')'), 1);
            drawAndRead(*again->page(page));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Changed, AbsurdAnnotationsTest, testing::Bool());
