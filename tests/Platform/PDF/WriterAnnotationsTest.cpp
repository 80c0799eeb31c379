#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>

namespace {

namespace Subtype = PDFAnnotationSubtype;
using Annotation = std::shared_ptr<PDFAnnotation>;

/// With a solid border of this width, if any.
Annotation make(const QString& type, const QRectF& bounds, const QColor& color, double border = 0) {
    auto annotation = std::make_shared<PDFAnnotation>(bounds, type);
    annotation->setColor(color);
    if (border > 0)
        annotation->setBorder(PDFBorder{border, PDFBorderStyle::solid, {}});
    return annotation;
}

/// A kind with a look of its own, as the program's own kinds are.
class Sticker : public PDFAnnotation {
public:
    explicit Sticker(const QRectF& bounds) : PDFAnnotation(bounds, Subtype::stamp) {}
    bool hasCustomAppearance() const override { return true; }
    Annotation copy() const override { return copied(std::make_shared<Sticker>(bounds())); }
    void draw(PDFDisplayBox, QPainter& painter) const override {
        if (bounds().width() > 200)
            return; // a large one shows nothing
        painter.fillRect(bounds(), QColor(255, 200, 0));
        painter.setPen(QPen(Qt::darkRed, 3));
        painter.drawLine(bounds().topLeft(), bounds().bottomRight());
        painter.save();
        painter.translate(bounds().left() + 4, bounds().bottom() - 16);
        painter.scale(1, -1);
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPointSizeF(12 * 72.0 / painter.device()->logicalDpiY());
        painter.setFont(font);
        painter.setPen(Qt::black);
        painter.drawText(QPointF(0, 0), QStringLiteral("Stickery ☃"));
        painter.restore();
    }
};

std::shared_ptr<PDFDocument> documentWith(const std::vector<Annotation>& annotations) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("Some text to mark.")}, {300, 300});
    auto document = PDFDocument::fromData(pdf.bytes());
    for (const Annotation& annotation : annotations)
        document->page(0)->addAnnotation(annotation);
    return document;
}

QImage picture(const PDFDocument& document) {
    return document.page(0)->thumbnail({600, 600}, PDFDisplayBox::mediaBox).convertToFormat(QImage::Format_RGB32);
}

/// Poppler's opinion of how the page looks.
QImage otherPicture(const QByteArray& file) {
    const auto result = PdfPrograms::run(QStringLiteral("pdftoppm -r 144 -singlefile FILE"), file);
    return QImage::fromData(result.output, "PPM").convertToFormat(QImage::Format_RGB32);
}

/// The mean difference of the pictures' colours, 0 to 255, over a rectangle of the 300 point page, which stands
/// `offset` points further in the second one.
double difference(const QImage& a, const QImage& b, const QRectF& box, QPoint offset = {}) {
    if (a.size() != b.size())
        return 255;
    const QRect pixels = QRectF(box.left() * 2, (300 - box.bottom()) * 2, box.width() * 2, box.height() * 2).toRect();
    double sum = 0;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x + offset.x() * 2, y - offset.y() * 2);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    return sum / 3 / (double(pixels.width()) * pixels.height());
}

struct Kind {
    const char* name;
    std::function<Annotation()> make;
};

const Kind kinds[] = {
    {"ink",
     [] {
         auto ink = make(Subtype::ink, {40, 40, 120, 80}, Qt::blue, 4);
         QPainterPath curve(QPointF(10, 10));
         curve.cubicTo({50, 90}, {80, -20}, {110, 70});
         ink->add(curve);
         ink->add(QPainterPath(QPointF(20, 60))); // a dot
         return ink;
     }},
    {"highlight",
     [] {
         return make(Subtype::highlight, {72, 225, 100, 12}, QColor(255, 230, 0));
     }},
    {"underline",
     [] {
         return make(Subtype::underline, {72, 225, 100, 12}, Qt::red);
     }},
    {"strikeOut",
     [] {
         return make(Subtype::strikeOut, {72, 225, 100, 12}, Qt::red);
     }},
    {"square",
     [] {
         auto square = make(Subtype::square, {40, 40, 120, 80}, Qt::darkGreen);
         square->setInteriorColor(QColor(220, 255, 220));
         square->setBorder(PDFBorder{6, PDFBorderStyle::dashed, {12, 6}});
         return square;
     }},
    {"circle",
     [] {
         return make(Subtype::circle, {40, 40, 120, 80}, QColor(200, 0, 200, 128), 8);
     }},
    {"line",
     [] {
         auto line = make(Subtype::line, {0, 0, 300, 300}, Qt::black, 5);
         line->setStartPoint({60, 60});
         line->setEndPoint({160, 120});
         line->setStartLineStyle(PDFLineStyle::openArrow);
         line->setEndLineStyle(PDFLineStyle::closedArrow);
         return line;
     }},
    {"lineWithShapes",
     [] {
         auto line = make(Subtype::line, {0, 0, 300, 300}, Qt::darkCyan, 3);
         line->setStartPoint({60, 60});
         line->setEndPoint({160, 60});
         line->setStartLineStyle(PDFLineStyle::diamond);
         line->setEndLineStyle(PDFLineStyle::circle);
         return line;
     }},
    {"freeText",
     [] {
         auto text = std::make_shared<PDFAnnotation>(QRectF(40, 40, 160, 60), Subtype::freeText);
         text->setFont(QFont(QStringLiteral("DejaVu Sans"), 14));
         text->setFontColor(QColor(Qt::darkBlue));
         text->setContents(QStringLiteral("Größe Ω, and words that need a second line"));
         return text;
     }},
    {"textField",
     [] {
         auto field = make(Subtype::widget, {40, 40, 160, 24}, Qt::darkGray, 2);
         field->setWidgetFieldType(PDFWidgetFieldType::text);
         field->setBackgroundColor(QColor(0, 0, 255, 20));
         field->setFieldName(QStringLiteral("text_1"));
         return field;
     }},
    {"checkBox",
     [] {
         auto box = make(Subtype::widget, {40, 40, 40, 40}, Qt::darkGray, 2);
         box->setWidgetFieldType(PDFWidgetFieldType::button);
         box->setWidgetControlType(PDFWidgetControlType::checkBox);
         box->setButtonWidgetState(PDFWidgetCellState::on);
         box->setFieldName(QStringLiteral("checkbox_1"));
         return box;
     }},
    {"sticker", [] { return std::make_shared<Sticker>(QRectF(40.5, 40.25, 100.5, 60.75)); }},
};

void expectSameValues(const PDFAnnotation& read, const PDFAnnotation& saved) {
    EXPECT_EQ(read.type(), saved.type());
    const QRectF moved(read.bounds().topLeft() - saved.bounds().topLeft(),
                       read.bounds().size() - saved.bounds().size());
    if (saved.type() != Subtype::line) { // whose rectangle is made to fit
        EXPECT_LT(std::abs(moved.x()) + std::abs(moved.y()) + std::abs(moved.width()) + std::abs(moved.height()), 0.01);
        EXPECT_EQ(read.quadrilateralPoints(), saved.quadrilateralPoints());
    }
    EXPECT_EQ(read.contents(), saved.contents());
    EXPECT_EQ(read.modificationDate().toUTC(), saved.modificationDate().toUTC());
    EXPECT_EQ(read.border(), saved.border());
    EXPECT_EQ(read.values().flags & 4, 4) << "it prints";
    if (saved.color() && saved.color()->alpha() > 0) {
        ASSERT_TRUE(read.color());
        const auto mask = saved.type() == Subtype::widget ? 0xFFFFFF : ~0U;
        EXPECT_EQ(read.color()->rgba() & mask, saved.color()->rgba() & mask);
    }
    EXPECT_EQ(read.startPoint(), saved.startPoint());
    EXPECT_EQ(read.endPoint(), saved.endPoint());
    EXPECT_EQ(read.startLineStyle(), saved.startLineStyle());
    EXPECT_EQ(read.endLineStyle(), saved.endLineStyle());
    EXPECT_EQ(read.paths().size(), saved.paths().size());
    EXPECT_EQ(read.fieldName(), saved.fieldName());
    EXPECT_EQ(read.widgetFieldType(), saved.widgetFieldType());
    EXPECT_EQ(read.buttonWidgetState(), saved.buttonWidgetState());
    if (saved.type() != Subtype::widget) {
        EXPECT_EQ(read.userName(), saved.userName());
    }
    if (saved.fontColor()) {
        EXPECT_EQ(read.fontColor()->rgb(), saved.fontColor()->rgb());
    }
    if (saved.font()) {
        EXPECT_EQ(read.font()->pointSizeF(), saved.font()->pointSizeF());
    }
}

class KindTest : public testing::TestWithParam<Kind> {};

} // namespace

TEST_P(KindTest, LooksTheSameInTheSavedFileAndHasItsValues) {
    const QImage blank = picture(*documentWith({}));
    const Annotation annotation = GetParam().make();
    annotation->setUserName(QStringLiteral("Äda"));
    if (annotation->contents().isEmpty())
        annotation->setContents(QStringLiteral("Wörds 日本"));
    annotation->setModificationDate(QDateTime(QDate(2024, 2, 29), QTime(12, 30, 1), Qt::OffsetFromUTC, -19800));
    const auto document = documentWith({annotation});
    const QImage live = picture(*document);
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const QRectF box = annotation->bounds();
    ASSERT_GT(difference(live, blank, box), 0.5) << "it shows";

    const auto reopened = PDFDocument::fromData(file);
    EXPECT_LT(difference(picture(*reopened), live, QRectF(0, 0, 299, 299)), 0.5);
    const QImage other = otherPicture(file);
    EXPECT_LT(difference(other, live, box) * 2, difference(other, blank, box));

    // Left alone, it stays as it is; moved, it looks the same elsewhere.
    const Annotation again = reopened->page(0)->annotations().at(0);
    EXPECT_FALSE(again->isModified());
    expectSameValues(*again, *annotation);
    const bool hasCornersOfItsOwn = box.width() > 200 || !again->values().quads.empty();
    if (hasCornersOfItsOwn)
        return;
    again->setBounds(box.translated(30, 70));
    const QByteArray movedFile = reopened->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(movedFile), "");
    EXPECT_LT(difference(live, picture(*PDFDocument::fromData(movedFile)), box, {30, 70}), 2);
}

INSTANTIATE_TEST_SUITE_P(Kinds, KindTest, testing::ValuesIn(kinds),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST(WriterAnnotationsTest, CalloutsCloudsAndDimensionsOfOtherProgramsStayWhatTheyAreWhenEdited) {
    struct Case {
        const char* name;
        QByteArray keys;
        QRectF feature; ///< where the plain kind would show nothing
    };
    const Case cases[] = {
        {"callout",
         "/Subtype /FreeText /IT /FreeTextCallout /Rect [40 60 200 160] /CL [45 65 90 110 110 120] /RD [70 5 5 50] "
         "/LE /OpenArrow /DA (/Helv 12 Tf 1 0 0 rg) /C [1 1 0.8] /Contents (Words)",
         {50, 70, 35, 35}},
        {"cloudy square",
         "/Subtype /Square /Rect [40 60 200 160] /BE << /S /C /I 2 >> /BS << /W 2 >> /RD [9 9 9 9]",
         {60, 62, 120, 6}},
        {"cloudy circle",
         "/Subtype /Circle /Rect [40 60 200 160] /BE << /S /C /I 2 >> /BS << /W 2 >> /RD [9 9 9 9]",
         {100, 61, 40, 6}},
        {"cloudy polygon",
         "/Subtype /Polygon /Rect [40 60 200 160] /Vertices [50 75 190 75 120 145] /BE << /S /C /I 2 >>",
         {60, 66, 120, 7}},
        {"dimension",
         "/Subtype /Line /IT /LineDimension /Rect [40 60 200 160] /L [50 80 190 80] /LL 40 /LLE 8 /LLO 4 /Cap true "
         "/LE [/OpenArrow /OpenArrow] /DA (/Helv 12 Tf 0 0 1 rg) /Contents (Words)",
         {48, 86, 4, 28}},
    };
    const QImage blank = picture(*documentWith({}));
    // A thin line over the area leaves as little, and a plain box would fill it.
    const auto isLineWork = [](double change) { return change > 4 && change < 150; };
    for (const auto& [name, keys, feature] : cases) {
        SCOPED_TRACE(name);
        PdfFixture pdf;
        pdf.addPage({QStringLiteral("Some text to mark.")}, {300, 300});
        pdf.addAnnotation(0, "<< /Type /Annot " + keys + (keys.contains("/C [") ? "" : " /C [1 0 0]") + " >>");
        const bool hasWords = keys.contains("/Contents");
        const bool moves = !keys.contains("/Line ");
        const auto document = PDFDocument::fromData(pdf.bytes());
        const Annotation annotation = document->page(0)->annotations().at(0);
        EXPECT_TRUE(isLineWork(difference(picture(*document), blank, feature)));
        if (moves)
            annotation->setBounds(annotation->bounds().translated(50, 60));
        const QRectF now = moves ? feature.translated(50, 60) : feature;
        annotation->setColor(QColor(0, 160, 0));
        if (hasWords)
            annotation->setContents(QStringLiteral("Changed"));
        EXPECT_TRUE(isLineWork(difference(picture(*document), blank, now))) << "on the screen";
        const QByteArray file = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        EXPECT_TRUE(isLineWork(difference(otherPicture(file), blank, now))) << "in another program";
        EXPECT_EQ(PdfPrograms::text(file).contains(QStringLiteral("Changed")), hasWords);
        const auto reopened = PDFDocument::fromData(file);
        EXPECT_LT(difference(picture(*reopened), picture(*document), QRectF(0, 0, 299, 299)), 1);
        const PDFAnnotationValues& read = reopened->page(0)->annotations().at(0)->values();
        EXPECT_EQ(read.callout, annotation->values().callout);
        EXPECT_EQ(read.cloudiness, annotation->values().cloudiness);
        EXPECT_EQ(read.line.leaderLength, annotation->values().line.leaderLength);
    }
}

TEST(WriterAnnotationsTest, RecordedLooksAreVectorsAndShareTheirFonts) {
    std::vector<Annotation> stickers;
    for (int i = 0; i < 5; ++i)
        stickers.push_back(std::make_shared<Sticker>(QRectF(10, 10 + 40 * i, 100, 30)));
    stickers.push_back(std::make_shared<Sticker>(QRectF(0, 0, 250, 250))); // draws nothing
    const QByteArray file = documentWith(stickers)->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    EXPECT_EQ(PdfPrograms::text(file).count(QStringLiteral("Stickery ☃")), 5);
    EXPECT_EQ(PdfPrograms::unpacked(file).count("/FontFile"), 1);
    EXPECT_FALSE(PdfPrograms::unpacked(file).contains("/Subtype /Image"));
    EXPECT_LT(file.size(), 40000);
}

TEST(WriterAnnotationsTest, LinksLeadWhereTheyDid) {
    PdfFixture pdf;
    for (int i = 0; i < 30; ++i)
        pdf.addPage({QStringLiteral("Page"), QString(400, QLatin1Char('y'))});
    const auto document = PDFDocument::fromData(pdf.bytes());
    auto inside = std::make_shared<PDFAnnotation>(QRectF(10, 10, 50, 20), Subtype::link);
    inside->setDestination(PDFDestination(document->page(7), std::nullopt, 300.0));
    auto outside = std::make_shared<PDFAnnotation>(QRectF(10, 40, 50, 20), Subtype::link);
    outside->setUrl(QStringLiteral("https://example.org/?q=a b"));
    document->page(0)->addAnnotation(inside);
    document->page(0)->addAnnotation(outside);

    auto reopened = PDFDocument::fromData(document->dataRepresentation());
    const auto link = [&reopened](std::size_t index) { return reopened->page(0)->annotations().at(index); };
    const auto reopen = [&reopened] { reopened = PDFDocument::fromData(reopened->dataRepresentation()); };
    EXPECT_EQ(link(0)->destination()->page(), reopened->page(7));
    EXPECT_FALSE(link(0)->destination()->x());
    EXPECT_EQ(link(0)->destination()->y(), 300);
    EXPECT_EQ(link(1)->url(), QStringLiteral("https://example.org/?q=a%20b"));

    // A change of something else keeps the target; the two kinds of target replace each other.
    link(0)->setBounds({10, 10, 60, 20});
    link(1)->setUrl(QString());
    link(1)->setDestination(PDFDestination(reopened->page(3), QPointF(0, 0)));
    reopen();
    EXPECT_EQ(link(0)->destination()->page(), reopened->page(7));
    EXPECT_EQ(link(1)->url(), QString());
    EXPECT_EQ(link(1)->destination()->page(), reopened->page(3));
    link(1)->setDestination(std::nullopt);
    reopen();
    EXPECT_FALSE(link(1)->destination());
}

TEST(WriterAnnotationsTest, RemovingANoteTakesItsWindowAndKeepsReplies) {
    PdfFixture pdf;
    pdf.addPage({});
    const QByteArray first =
        pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Text /Rect [0 0 9 9] /Contents (first) >>");
    const QByteArray second = pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Text /Rect [0 0 9 9] /Contents (second) "
                                                   "/IRT " +
                                                       first + " >>");
    const QByteArray popup =
        pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Popup /Rect [0 0 9 9] /Parent " + second + " >>");
    pdf.setKey(second, "/Popup", popup);
    pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Text /Rect [0 0 9 9] /Contents (third) /IRT " + second + " >>");
    pdf.addAnnotation(0, "null");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    ASSERT_EQ(page->annotations().size(), 4U);
    page->removeAnnotation(page->annotations()[1]);
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const QByteArray all = PdfPrograms::unpacked(file);
    EXPECT_FALSE(all.contains("/Popup"));
    EXPECT_EQ(all.count("/IRT"), 1) << "the third now answers the first";

    const auto reopened = PDFDocument::fromData(file);
    ASSERT_EQ(reopened->page(0)->annotations().size(), 2U);
    reopened->page(0)->removeAnnotation(reopened->page(0)->annotations()[0]);
    EXPECT_FALSE(PdfPrograms::unpacked(reopened->dataRepresentation()).contains("/IRT"));
}

TEST(WriterAnnotationsTest, OrderIsThatOfThePage) {
    PdfFixture pdf;
    pdf.addPage({});
    for (const char* name : {"(a)", "(b)", "(c)"})
        pdf.addAnnotation(0, QByteArray("<< /Type /Annot /Subtype /Square /Rect [0 0 9 9] /Contents ") + name + " >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto page = document->page(0);
    const Annotation a = page->annotations()[0];
    page->removeAnnotation(a);
    page->addAnnotation(a);
    auto d = make(Subtype::square, {0, 0, 9, 9}, Qt::red);
    d->setContents(QStringLiteral("d"));
    page->insertAnnotation(d, 1);
    QStringList order;
    const auto reopened = PDFDocument::fromData(document->dataRepresentation());
    for (const auto& annotation : reopened->page(0)->annotations())
        order += annotation->contents();
    EXPECT_EQ(order.join(QString()).toStdString(), "bdca");
}

TEST(WriterAnnotationsTest, AnAnnotationMayComeFromAnotherPage) {
    PdfFixture pdf;
    for (int i = 0; i < 20; ++i)
        pdf.addPage({QString(300, QLatin1Char('z'))});
    pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Square /Rect [0 0 9 9] /Mine (unknown) /Contents (moving) >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    const Annotation moving = document->page(0)->annotations()[0];
    document->page(0)->removeAnnotation(moving);
    document->page(3)->addAnnotation(moving);
    document->page(4)->addAnnotation(moving->copy());
    moving->setBounds({50, 50, 20, 20});
    const auto other = PDFDocument::fromData(pdf.bytes());
    document->page(5)->addAnnotation(other->page(0)->annotations()[0]->copy());
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const auto reopened = PDFDocument::fromData(file);
    EXPECT_TRUE(reopened->page(0)->annotations().empty());
    for (int page = 3; page <= 5; ++page)
        EXPECT_EQ(reopened->page(page)->annotations().at(0)->contents(), QStringLiteral("moving"));
    EXPECT_EQ(reopened->page(3)->annotations()[0]->bounds(), QRectF(50, 50, 20, 20));
    EXPECT_EQ(reopened->page(4)->annotations()[0]->bounds(), QRectF(0, 0, 9, 9));
    EXPECT_EQ(PdfPrograms::unpacked(file).count("(unknown)"), 3);
}
