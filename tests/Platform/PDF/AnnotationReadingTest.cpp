#include "AccountName.h"
#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QDateTime>

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PDFAnnotation> readBack(const QByteArray& dictionary) {
    PdfFixture pdf;
    pdf.addPage({});
    pdf.addAnnotation(0, dictionary);
    static std::shared_ptr<PDFDocument> keptAlive;
    keptAlive = PDFDocument::fromData(pdf.bytes());
    const auto& all = keptAlive->page(0)->annotations();
    return all.empty() ? nullptr : all.front();
}

} // namespace

TEST(AnnotationReading, TakesTheStandardKeys) {
    const auto line = readBack("<< /Subtype /Line /Rect [200 300 100 50] /C [1 0 0] /L [110 60 190 290] "
                               "/LE [/Circle /ClosedArrow] /BS << /W 3 /S /D /D [4 2] >> /Contents (note) /T (Ann) "
                               "/M (D:20240229123000+01'30') /F 68 >>");
    ASSERT_TRUE(line);
    EXPECT_EQ(line->type(), PDFAnnotationSubtype::line);
    EXPECT_EQ(line->bounds(), QRectF(100, 50, 100, 250));
    EXPECT_EQ(line->color(), QColor(Qt::red));
    EXPECT_EQ(line->startPoint(), QPointF(110, 60));
    EXPECT_EQ(line->endPoint(), QPointF(190, 290));
    EXPECT_EQ(line->startLineStyle(), PDFLineStyle::circle);
    EXPECT_EQ(line->endLineStyle(), PDFLineStyle::closedArrow);
    EXPECT_EQ(line->border(), (PDFBorder{3, PDFBorderStyle::dashed, {4, 2}}));
    EXPECT_EQ(line->contents(), QStringLiteral("note"));
    EXPECT_EQ(line->userName(), QStringLiteral("Ann"));
    EXPECT_EQ(line->modificationDate().toUTC(), QDateTime(QDate(2024, 2, 29), QTime(11, 0), Qt::UTC));
    EXPECT_EQ(line->values().flags & 4, 4) << "it prints";
    EXPECT_FALSE(line->isModified());

    const auto ink = readBack("<< /Subtype /Ink /Rect [10 20 110 120] /InkList [[10 20 60 70 110 120] [20 30]] >>");
    ASSERT_EQ(ink->paths().size(), 2U);
    EXPECT_EQ(ink->paths()[0].elementAt(1).x, 50); // relative to the lower left corner of its box
    EXPECT_EQ(ink->paths()[0].elementAt(2).y, 100);

    const auto free = readBack("<< /Subtype /FreeText /Rect [0 0 9 9] /DA (0 0 1 rg /Helv 14.5 Tf) /Contents "
                               "<FEFF00E4D83DDE00> >>");
    EXPECT_EQ(free->contents(), QString::fromUtf8("ä😀"));
    EXPECT_EQ(free->fontColor(), QColor(Qt::blue));
    EXPECT_DOUBLE_EQ(free->font()->pointSizeF(), 14.5);

    const auto marked = readBack("<< /Subtype /Highlight /Rect [0 0 50 10] /QuadPoints [0 10 50 10 0 0 50 0] >>");
    EXPECT_EQ(marked->quadrilateralPoints(), std::vector{PDFQuad::fromRect(QRectF(0, 0, 50, 10))});

    EXPECT_FALSE(readBack("<< /Rect [0 0 1 1] >>"));
    EXPECT_FALSE(readBack("[ 1 2 ]"));
}

TEST(AnnotationReading, ANoteWithoutASizeIsWhereItsSignIsShown) {
    const std::vector<std::pair<QByteArray, QRectF>> cases = {
        {"[100 300 100 300]", {100, 280, 20, 20}},
        {"[612 0 612 0]", {592, 0, 20, 20}}, // the corner of the page
        {"[900 300 900 300]", {900, 280, 20, 20}},
        {"[100 300 110 330]", {100, 300, 10, 30}},
    };
    for (const auto& [rect, place] : cases) {
        const auto note = readBack("<< /Subtype /Text /Contents (x) /AP << /N << >> >> /Rect " + rect + " >>");
        EXPECT_EQ(note->bounds(), place);
        EXPECT_EQ(note->drawsItself(), place.width() == 20);
        EXPECT_EQ(note->page()->annotation(place.center()), note);
        EXPECT_FALSE(note->isModified());
    }
}

TEST(AnnotationReading, NamesTheAccountAsItsDetailsDo) {
    const QString login = QStringLiteral("ada");
    for (const auto& [details, name] :
         {std::pair("Ada King,Room 1,,", "Ada King"), {"& King", "Ada King"}, {",x", "ada"}})
        EXPECT_EQ(AccountName::from(QString::fromLatin1(details), login), QString::fromLatin1(name));
    EXPECT_FALSE(AccountName::current().isEmpty());
}

TEST(AnnotationReading, LinksLeadToPagesEvenAfterTheyMoved) {
    PdfFixture pdf;
    pdf.addPages(3, QStringLiteral("Page %1"));
    pdf.addNamedDestination("chapter", 2);
    pdf.addLink(0, QRectF(0, 0, 10, 10), 1);
    pdf.addNamedLink(0, QRectF(20, 0, 10, 10), "chapter");
    pdf.addUriLink(0, QRectF(40, 0, 10, 10), "https://example.org/a?b=c");
    pdf.addNamedLink(0, QRectF(60, 0, 10, 10), "nowhere");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto target = document->page(2);
    const auto links = document->page(0)->annotations();
    ASSERT_EQ(links.size(), 4U);
    EXPECT_EQ(links[0]->destination()->page(), document->page(1));
    EXPECT_EQ(links[1]->destination()->page(), target);
    EXPECT_EQ(links[2]->url(), QStringLiteral("https://example.org/a?b=c"));
    EXPECT_FALSE(links[2]->destination());
    EXPECT_FALSE(links[3]->destination());
    document->insert(document->removePage(2), 0);
    EXPECT_EQ(document->index(links[1]->destination()->page().get()), 0);
    document->removePage(0);
    EXPECT_FALSE(links[1]->destination());
}

TEST(AnnotationsOfAPage, ChangesAreToldAndCounted) {
    PdfFixture pdf;
    pdf.addPage({});
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    int told = 0;
    QObject::connect(document.get(), &PDFDocument::pageContentChanged, [&](PDFPage* changed) {
        EXPECT_EQ(changed, page.get());
        ++told;
    });
    const auto square = std::make_shared<PDFAnnotation>(QRectF(50, 60, -20, -20), PDFAnnotationSubtype::square);
    EXPECT_EQ(square->bounds(), QRectF(30, 40, 20, 20));
    page->addAnnotation(square);
    page->addAnnotation(square); // it is on a page already
    EXPECT_EQ(page->annotations().size(), 1U);
    EXPECT_EQ(told, 1);
    square->setColor(QColor(Qt::green));
    square->setColor(QColor(Qt::green));
    EXPECT_EQ(told, 2);
    EXPECT_EQ(page->annotation(QPointF(40, 50)), square);
    EXPECT_EQ(page->annotation(QPointF(10, 10)), nullptr);
    const auto copy = page->copy();
    ASSERT_EQ(copy->annotations().size(), 1U);
    EXPECT_NE(copy->annotations()[0], square);
    EXPECT_EQ(copy->annotations()[0]->page(), copy);
    EXPECT_EQ(copy->annotations()[0]->color(), QColor(Qt::green));
    page->removeAnnotation(square);
    EXPECT_EQ(square->page(), nullptr);
    EXPECT_FALSE(page->isModified());
    EXPECT_EQ(page->removeAnnotation(square), -1);
}
