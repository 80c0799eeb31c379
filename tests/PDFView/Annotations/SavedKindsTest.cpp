#include "AccountName.h"
#include "FolderTest.h"
#include "FormFieldPlacer.h"
#include "FreeTextAnnotation.h"
#include "InkPath.h"
#include "LineAnnotation.h"
#include "NoteAnnotation.h"
#include "OvalAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "RectangleAnnotation.h"
#include "RedactionMarkerAnnotation.h"
#include "SignatureAnnotation.h"
#include "TextCoverAnnotation.h"

#include <QImage>
#include <QPainter>
#include <QTransform>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <typeinfo>

namespace {

namespace Subtype = PDFAnnotationSubtype;
using Annotation = std::shared_ptr<PDFAnnotation>;

// The page shows this part of its media box; kinds stand in cells of it.
const QRectF cropBox(20, 30, 400, 500);
constexpr int scale = 2; // pixels to a point

constexpr std::size_t cellCount = 18;

QRectF cell(std::size_t index) {
    const QPointF corner(10.0 + 130.0 * double(index % 3), 10.0 + 80.0 * std::floor(double(index) / 3));
    return {cropBox.topLeft() + corner, QSizeF(120, 70)};
}

template <typename Kind>
std::shared_ptr<Kind> colored(const std::shared_ptr<Kind>& annotation, const QColor& color, double lineWidth = 0) {
    annotation->setColor(color);
    if (lineWidth > 0)
        annotation->setBorder(PDFBorder{lineWidth});
    return annotation;
}

Annotation line(PDFLineStyle start, PDFLineStyle end, QPointF from, QPointF to, double width) {
    auto made = colored(std::make_shared<LineAnnotation>(QRectF(0, 0, 500, 600)), QColor(30, 60, 160), width);
    made->setStartPoint(from);
    made->setEndPoint(to);
    made->setStartLineStyle(start);
    made->setEndLineStyle(end);
    return made;
}

Annotation freeText(const QRectF& bounds, const QString& text,
                    const QFont& font = {QStringLiteral("DejaVu Sans"), 16}) {
    const auto made = colored(std::make_shared<FreeTextAnnotation>(bounds), Qt::transparent);
    made->setContents(text);
    made->setFont(font);
    made->setFontColor(QColor(120, 20, 20));
    return made;
}

Annotation signature(const QRectF& bounds) {
    QImage image(240, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 8, Qt::SolidLine, Qt::RoundCap));
    painter.drawPolyline(QPolygonF({{10, 90}, {80, 10}, {120, 80}, {180, 20}, {230, 60}}));
    return std::make_shared<SignatureAnnotation>(image, bounds);
}

/// Every kind but the note, each in a cell of its own; the last one shows nothing.
std::vector<Annotation> everyKind() {
    using enum PDFLineStyle;
    std::vector<Annotation> all;
    QRectF at = cell(0);
    const auto place = [&](const Annotation& annotation) {
        all.push_back(annotation);
        at = cell(all.size());
    };
    place(freeText(at, QStringLiteral("Latin, Кириллица, Ελληνικά that wrap"),
                   {QStringLiteral("DejaVu Serif"), 14, QFont::Bold}));
    place(freeText(at, QStringLiteral("日本語 مرحبا naïve ﬁne €")));
    place(colored(std::make_shared<RectangleAnnotation>(at), QColor(0, 128, 0)));
    place(colored(std::make_shared<OvalAnnotation>(at), QColor(200, 0, 200, 128), 6));
    place(signature(at.adjusted(25, 0, -25, 0)));
    const QPointF reach(40, 20);
    place(line(square, closedArrow, at.center() - reach, at.center() + reach, 3));
    place(line(circle, openArrow, at.center() + reach, at.center() - reach, 1));
    place(line(diamond, none, at.center() - QPointF(40, 0), at.center() + QPointF(40, 0), 5));
    place(line(none, closedArrow, at.center(), at.center(), 20)); // a dot
    const QPointF corner = at.topLeft();
    place(InkPath::inkAnnotation({corner, corner + QPointF(40, 60), corner + QPointF(110, 20)}, Qt::blue, 4));
    place(colored(std::make_shared<RedactionMarkerAnnotation>(at), Qt::green, 7));
    all.back()->setContents(RedactionMarkerAnnotation::marker);
    for (const QString& type : {Subtype::highlight, Subtype::underline, Subtype::strikeOut})
        place(colored(std::make_shared<PDFAnnotation>(at.adjusted(4, 20, -4, -20), type), Qt::yellow));
    place(FormFieldPlacer::makeAnnotation(FormFieldMode::text, at.adjusted(2, 20, -2, -20)));
    place(FormFieldPlacer::makeAnnotation(FormFieldMode::checkbox, {at.topLeft(), QSizeF(40, 40)}));
    all.back()->setButtonWidgetState(PDFWidgetCellState::on);
    place(std::make_shared<TextCoverAnnotation>(at));
    return all;
}

std::shared_ptr<PDFDocument> pageWith(const std::vector<Annotation>& all, int rotation = 0) {
    PdfFixture pdf;
    // Words in every cell, for what must not be hidden.
    QByteArray content = "BT /F1 20 Tf 0.3 g ";
    for (std::size_t i = 0; i < cellCount; ++i) {
        const QPointF at = cell(i).topLeft() + QPointF(10, 28);
        content += "1 0 0 1 " + QByteArray::number(at.x()) + ' ' + QByteArray::number(at.y()) + " Tm (words) Tj ";
    }
    pdf.addPageWithContent(content + "ET", pdf.defaultResources(), {500, 600});
    pdf.setPageKey(0, "/CropBox", PdfFixture::rectArray(cropBox));
    pdf.setPageKey(0, "/Rotate", QByteArray::number(rotation));
    auto document = PDFDocument::fromData(pdf.bytes());
    for (const Annotation& annotation : all)
        document->page(0)->addAnnotation(annotation);
    return document;
}

QImage turnedBack(const QImage& picture, int rotation) {
    return picture.transformed(QTransform().rotate(-rotation)).convertToFormat(QImage::Format_RGB32);
}

QImage ours(const PDFDocument& document) {
    const PDFPage& page = *document.page(0);
    const QSize size = (page.displaySize(PDFDisplayBox::cropBox) * scale).toSize();
    return turnedBack(page.thumbnail(size, PDFDisplayBox::cropBox), page.rotation());
}

QImage theirs(const QString& command, const QByteArray& file, int rotation = 0) {
    return turnedBack(QImage::fromData(PdfPrograms::run(command, file).output, "PPM"), rotation);
}

/// Of a picture of the page, unturned.
QImage partOf(const QImage& picture, const QRectF& area) {
    const QTransform toPixels(scale, 0, 0, -scale, -cropBox.left() * scale, cropBox.bottom() * scale);
    return picture.copy(toPixels.mapRect(area).toRect());
}

/// That no part of five by five points has another colour in one picture than in the other, which are in RGB32. What is
/// finer, as the edges of letters, is each program's choice.
void expectAlike(const QImage& picture, const QImage& expected, const std::string& what) {
    ASSERT_EQ(picture.size(), expected.size()) << what;
    const QSize parts = picture.size() / (5 * scale);
    const QImage one = picture.scaled(parts, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage other = expected.scaled(parts, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    for (int y = 0; y < parts.height(); ++y)
        for (int byte = 0; byte < 4 * parts.width(); ++byte)
            ASSERT_NEAR(one.constScanLine(y)[byte], other.constScanLine(y)[byte], 25)
                << what << ", at " << byte / 4 * 5 << ' ' << y * 5;
}

class SavedKindsTest : public testing::TestWithParam<int> {};

} // namespace

TEST_P(SavedKindsTest, LookTheSameToEveryReader) {
    const int rotation = GetParam();
    const std::vector<Annotation> all = everyKind();
    const auto document = pageWith(all, rotation);
    const QImage live = ours(*document);
    const QImage blank = ours(*pageWith({}, rotation));
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(partOf(live, cell(i)) == partOf(blank, cell(i)), i == all.size() - 1) << i;
    for (const std::size_t i : {11U, 14U}) { // the highlight and the text field leave the words readable
        const QImage part = partOf(live, cell(i)).convertToFormat(QImage::Format_Grayscale8);
        EXPECT_LT(*std::min_element(part.constBits(), part.constBits() + part.sizeInBytes()), 90);
    }
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    expectAlike(ours(*PDFDocument::fromData(file)), live, "reopened");
    expectAlike(theirs(QStringLiteral("mutool draw -r 144 -F ppm -o - FILE"), file, rotation), live, "mutool");
    expectAlike(theirs(QStringLiteral("pdftoppm -cropbox -r 144 -singlefile FILE"), file, rotation), live, "pdftoppm");
}

INSTANTIATE_TEST_SUITE_P(Rotation, SavedKindsTest, testing::Values(0, 90, 270));

/// Of what it says, and how it looks, what is the same before and after a save.
static auto valuesOf(const PDFAnnotation& each) {
    const QRgb color = each.color() && each.color()->alpha() > 0 ? each.color()->rgba() : 0;
    return std::tuple(each.type(), each.contents(), each.modificationDate(), each.creationDate(), color,
                      each.paths().size(), each.border().value_or(PDFBorder{each.values().defaultLineWidth}));
}

TEST(SavedKinds, ComeBackAsPlainAnnotationsWithTheirValues) {
    const std::vector<Annotation> all = everyKind();
    const auto reopened = PDFDocument::fromData(pageWith(all)->dataRepresentation());
    const auto& read = reopened->page(0)->annotations();
    ASSERT_EQ(read.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(i);
        const PDFAnnotation& before = *all[i];
        const PDFAnnotation& after = *read[i];
        EXPECT_EQ(typeid(after), typeid(PDFAnnotation));
        EXPECT_EQ(valuesOf(after), valuesOf(before));
        EXPECT_EQ(after.values().flags & 4, 4) << "it prints";
        const bool isMarkup = Subtype::isMarkup(before.type());
        EXPECT_EQ(after.userName(), isMarkup ? AccountName::current() : QString()) << "who made it";
        EXPECT_EQ(after.creationDate().isValid() && after.modificationDate().isValid(), isMarkup) << "and when";
        if (before.font()) {
            EXPECT_EQ(after.font()->family(), before.font()->family());
            EXPECT_EQ(after.font()->bold(), before.font()->bold());
        }
        if (before.type() == Subtype::line) {
            // The rectangle in the file fits the line; the live object keeps the whole page.
            EXPECT_TRUE(cell(i).contains(after.bounds())) << after.bounds().width();
            EXPECT_TRUE(after.bounds().contains(before.startPoint()) && after.bounds().contains(before.endPoint()));
        } else {
            EXPECT_EQ(after.bounds(), before.bounds());
        }
        const Annotation copied = before.copy();
        const PDFAnnotation& copy = *copied;
        EXPECT_EQ(typeid(copy), typeid(before)) << "a copy is of the same kind";
    }
}

/// Pictures of words, a signature and a note that are placed alike as the page is seen, whose width and height are 400
/// and 500 points: live, reopened, changed then, and changed and saved as others show it, without the note.
static std::vector<QImage> placedAsSeen(int rotation, double userUnit) {
    const QSizeF seen(400, 500);
    PdfFixture pdf;
    pdf.addPageWithContent("", "<< >>", (rotation % 180 == 0 ? seen : seen.transposed()) / userUnit);
    pdf.setPageKey(0, "/Rotate", QByteArray::number(rotation));
    pdf.setPageKey(0, "/UserUnit", QByteArray::number(userUnit));
    const auto document = PDFDocument::fromData(pdf.bytes());
    const QTransform toPage = document->page(0)->displayTransform(PDFDisplayBox::cropBox).inverted();
    const QString words = QStringLiteral("Words that wrap in the box");
    document->page(0)->addAnnotation(freeText(toPage.mapRect(QRectF(20, 30, 200, 60)), words));
    document->page(0)->addAnnotation(signature(toPage.mapRect(QRectF(30, 150, 160, 66))));
    const auto note = std::make_shared<NoteAnnotation>(toPage.mapRect(QRectF(200, 300, 120, 80)));
    note->setContents(QStringLiteral("Remember"));
    document->page(0)->addAnnotation(note);

    std::vector<QImage> pictures;
    const auto show = [&](const PDFPage& page) {
        pictures.push_back(turnedBack(page.thumbnail((seen * scale).toSize(), PDFDisplayBox::cropBox), 0));
    };
    show(*document->page(0));
    const auto reopened = PDFDocument::fromData(document->dataRepresentation());
    const auto page = reopened->page(0);
    show(*page);
    EXPECT_NEAR(page->annotations().at(0)->font()->pointSizeF(), 16, 0.01);
    page->annotations()[0]->setContents(QStringLiteral("Other words, which wrap"));
    show(*page);
    EXPECT_EQ(page->annotations().at(2)->values().flags, rotation == 0 ? 4 : 4 + 16) << "no turned sign";
    page->removeAnnotation(page->annotations().at(2));
    const QByteArray file = reopened->dataRepresentation();
    pictures.push_back(theirs(QStringLiteral("mutool draw -w 800 -h 1000 -F ppm -o - FILE"), file));
    pictures.push_back(theirs(QStringLiteral("pdftoppm -singlefile -r %1 FILE").arg(72 * scale * userUnit), file));
    return pictures;
}

TEST(SavedKinds, StandUprightAndInPointsOnEveryPageAsItIsSeen) {
    const std::vector<QImage> plain = placedAsSeen(0, 1);
    const std::pair<int, double> pages[] = {{90, 1}, {180, 1}, {270, 1}, {0, 2}, {90, 2}};
    for (const auto& [rotation, userUnit] : pages) {
        const std::vector<QImage> pictures = placedAsSeen(rotation, userUnit);
        for (std::size_t i = 0; i < plain.size(); ++i)
            expectAlike(pictures[i], plain[i], std::to_string(rotation) + " degrees, picture " + std::to_string(i));
    }
}

TEST(SavedKinds, ANoteIsLeftToTheReadersSign) {
    const QRectF at = cell(0);
    const auto note = colored(std::make_shared<NoteAnnotation>(at), QColor(242, 169, 59));
    const auto document = pageWith({note});
    const QImage blank = ours(*pageWith({}));
    const QImage empty = ours(*document);
    note->setContents(QStringLiteral("Remember the milk"));
    EXPECT_NE(ours(*document), empty) << "its words show";

    const QByteArray file = document->dataRepresentation();
    const QByteArray all = PdfPrograms::unpacked(file);
    EXPECT_TRUE(all.contains("/Name /Note") && all.contains("Remember the milk") && !all.contains("/AP"));
    const QImage shown = ours(*PDFDocument::fromData(file));
    for (const QRectF& part : {QRectF(at.left(), at.bottom() - 20, 20, 20), at.adjusted(21, 0, 0, 0)})
        EXPECT_EQ(partOf(shown, part) == partOf(blank, part), part.width() > 20) << "the sign, and nothing beside it";
}

TEST(SavedKinds, TextIsTextForOtherPrograms) {
    const QString words = QStringLiteral("Größe Кириллица Ελληνικά");
    const auto document = pageWith({freeText(QRectF(40, 200, 300, 120), words + QStringLiteral(" 日本語 مرحبا"))});
    const auto reopened = PDFDocument::fromData(document->dataRepresentation());
    for (const QString& word : words.split(u' '))
        EXPECT_TRUE(PdfPrograms::text(document->dataRepresentation()).contains(word)) << word.toStdString();
    reopened->page(0)->annotations()[0]->setContents(QStringLiteral("changed"));
    const QByteArray changed = reopened->dataRepresentation();
    EXPECT_TRUE(PdfPrograms::text(changed).contains(QStringLiteral("changed")));
    const auto again = PDFDocument::fromData(changed);
    EXPECT_EQ(again->page(0)->annotations()[0]->font()->family(), QStringLiteral("DejaVu Sans"));
}

using SavedFields = FolderTest;

TEST_F(SavedFields, CanBeFilledElsewhere) {
    std::vector<Annotation> fields = everyKind();
    std::erase_if(fields, [](const Annotation& each) { return each->type() != Subtype::widget; });
    fields.back()->setButtonWidgetState(PDFWidgetCellState::off);
    makeFile("fill.js", "var file = new PDFDocument(scriptArgs[0]), fields = file.loadPage(0).getWidgets();\n"
                        "fields[0].setTextValue('from elsewhere');\n"
                        "fields[1].toggle();\n"
                        "fields.forEach(function (field) { field.update(); });\n"
                        "file.save(scriptArgs[1], '');\n");
    const QString line = QStringLiteral("mutool run %1 FILE %2").arg(path("fill.js"), path("filled.pdf"));
    const auto result = PdfPrograms::run(line, pageWith(fields)->dataRepresentation());
    EXPECT_EQ(result.exitCode, 0) << result.errors.toStdString();
    const QByteArray file = contentOf("filled.pdf");
    const auto document = PDFDocument::fromData(file);
    const auto& read = document->page(0)->annotations();
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0]->fieldName(), fields[0]->fieldName());
    EXPECT_EQ(read[0]->widgetStringValue(), QStringLiteral("from elsewhere"));
    EXPECT_EQ(read[1]->buttonWidgetState(), PDFWidgetCellState::on);
    EXPECT_TRUE(PdfPrograms::text(file).contains(QStringLiteral("from elsewhere"))) << "and shown";
}
