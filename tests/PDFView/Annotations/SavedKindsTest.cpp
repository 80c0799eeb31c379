#include "AccountName.h"
#include "FreeTextAnnotation.h"
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

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QTransform>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <tuple>
#include <typeinfo>

namespace {

namespace Subtype = PDFAnnotationSubtype;
using Annotation = std::shared_ptr<PDFAnnotation>;

// The page shows this part of its media box; kinds stand in cells of it.
const QRectF cropBox(20, 30, 400, 500);
constexpr double scale = 2; // pixels to a point

constexpr int cellCount = 18;

QRectF cell(std::size_t index) {
    const QPointF corner(10.0 + 130.0 * double(index % 3), 10.0 + 80.0 * std::floor(double(index) / 3));
    return {cropBox.topLeft() + corner, QSizeF(120, 70)};
}

struct Placed {
    std::string name;
    QRectF cell;
    Annotation annotation;
};

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

Annotation widget(const QRectF& bounds, PDFWidgetFieldType type, const QString& name) {
    auto made = colored(std::make_shared<PDFAnnotation>(bounds, Subtype::widget), Qt::blue, 2);
    made->setBackgroundColor(QColor(0, 122, 255, 20));
    made->setWidgetFieldType(type);
    made->setWidgetControlType(PDFWidgetControlType::checkBox);
    made->setFieldName(name);
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

/// Every kind but the note, each in a cell of its own.
std::vector<Placed> everyKind() {
    using enum PDFLineStyle;
    std::vector<Placed> all;
    QRectF at = cell(0);
    const auto place = [&](const char* name, const Annotation& annotation) {
        all.push_back({name, at, annotation});
        at = cell(all.size());
    };
    place("freeText", freeText(at, QStringLiteral("Latin, Кириллица, Ελληνικά that wrap"),
                               {QStringLiteral("DejaVu Serif"), 14, QFont::Bold}));
    place("scripts", freeText(at, QStringLiteral("日本語 مرحبا naïve ﬁne €")));
    const QRectF within = at.adjusted(5, 5, -5, -5);
    place("rectangle", colored(std::make_shared<RectangleAnnotation>(within), QColor(0, 128, 0)));
    place("oval", colored(std::make_shared<OvalAnnotation>(at.adjusted(5, 5, -5, -5)), QColor(200, 0, 200, 128), 6));
    place("signature", signature(at.adjusted(25, 0, -25, 0)));
    const QPointF reach(40, 20);
    place("squareToClosedArrow", line(square, closedArrow, at.center() - reach, at.center() + reach, 3));
    place("circleToOpenArrow", line(circle, openArrow, at.center() + reach, at.center() - reach, 1));
    place("diamondToNone", line(diamond, none, at.center() - QPointF(40, 0), at.center() + QPointF(40, 0), 5));
    place("dot", line(none, closedArrow, at.center(), at.center(), 20));
    place("ink", colored(std::make_shared<PDFAnnotation>(at, Subtype::ink), Qt::blue, 4));
    QPainterPath curve(QPointF(10, 10));
    curve.cubicTo({40, 90}, {70, -20}, {110, 60});
    all.back().annotation->add(curve);
    place("redaction", colored(std::make_shared<RedactionMarkerAnnotation>(at), Qt::green, 7));
    all.back().annotation->setContents(RedactionMarkerAnnotation::marker);
    for (const auto& [name, type, color] : {std::tuple("highlight", Subtype::highlight, QColor(255, 230, 0)),
                                            {"underline", Subtype::underline, QColor(220, 0, 0)},
                                            {"strikeOut", Subtype::strikeOut, QColor(220, 0, 0)}})
        place(name, colored(std::make_shared<PDFAnnotation>(at.adjusted(4, 20, -4, -20), type), color));
    place("textField", widget(at.adjusted(2, 20, -2, -20), PDFWidgetFieldType::text, QStringLiteral("text_1")));
    place("checkBox", widget({at.topLeft(), QSizeF(40, 40)}, PDFWidgetFieldType::button, QStringLiteral("checkbox_2")));
    all.back().annotation->setButtonWidgetState(PDFWidgetCellState::on);
    place("textCover", std::make_shared<TextCoverAnnotation>(at));
    return all;
}

std::shared_ptr<PDFDocument> pageWith(const std::vector<Placed>& all, int rotation = 0) {
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
    for (const Placed& placed : all)
        document->page(0)->addAnnotation(placed.annotation);
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
    const QStringList parts = command.split(u' ');
    return turnedBack(QImage::fromData(PdfPrograms::run(parts[0], parts.mid(1), file).output, "PPM"), rotation);
}

/// Pictures of the page by this program, before and after it is saved, and of the file by two others.
std::vector<std::pair<std::string, QImage>> pictures(const PDFDocument& document, int rotation) {
    const QByteArray file = document.dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    return {{"live", ours(document)},
            {"reopened", ours(*PDFDocument::fromData(file))},
            {"mutool", theirs(QStringLiteral("mutool draw -r 144 -F ppm -o - FILE"), file, rotation)},
            {"pdftoppm", theirs(QStringLiteral("pdftoppm -cropbox -r 144 -singlefile FILE"), file, rotation)}};
}

/// What an annotation changes in a part of a picture.
struct Look {
    int pixels = 0;
    int dark = 0; ///< pixels as dark as the page's words, changed or not
    std::array<double, 3> color{};
};

/// `least` is the difference of a pixel's parts, added up, from which on it counts.
Look lookAt(const QImage& picture, const QImage& blank, const QRectF& area, int least = 20) {
    const QTransform toPixels(scale, 0, 0, -scale, -cropBox.left() * scale, cropBox.bottom() * scale);
    const QRect pixels = toPixels.mapRect(area).toRect().intersected(picture.rect());
    Look look;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            const QRgb p = picture.pixel(x, y);
            const QRgb q = blank.pixel(x, y);
            const std::array<int, 3> parts{qRed(p), qGreen(p), qBlue(p)};
            look.dark += parts[0] + parts[1] + parts[2] < 330 ? 1 : 0;
            if (std::abs(parts[0] - qRed(q)) + std::abs(parts[1] - qGreen(q)) + std::abs(parts[2] - qBlue(q)) < least)
                continue;
            ++look.pixels;
            for (std::size_t i = 0; i < 3; ++i)
                look.color[i] += parts[i];
        }
    for (double& part : look.color)
        part /= std::max(1, look.pixels);
    return look;
}

class SavedKindsTest : public testing::TestWithParam<int> {};

} // namespace

TEST_P(SavedKindsTest, LookTheSameToEveryReader) {
    const std::vector<Placed> all = everyKind();
    const auto blanks = pictures(*pageWith({}, GetParam()), GetParam());
    const auto shown = pictures(*pageWith(all, GetParam()), GetParam());
    for (std::size_t reader = 1; reader < shown.size(); ++reader) {
        const auto& [name, picture] = shown[reader];
        const QImage& blank = blanks[reader].second;
        ASSERT_EQ(picture.size(), shown[0].second.size()) << name;
        int inCells = 0;
        for (const Placed& placed : all) {
            SCOPED_TRACE(name + ", " + placed.name);
            const Look here = lookAt(picture, blank, placed.cell);
            const Look there = lookAt(shown[0].second, blanks[0].second, placed.cell);
            inCells += here.pixels;
            if (placed.name == "textCover") {
                EXPECT_EQ(here.pixels + there.pixels, 0);
                continue;
            }
            ASSERT_GT(there.pixels, 300) << "it shows";
            EXPECT_NEAR(here.pixels, there.pixels, 0.12 * there.pixels);
            // Edges of thin lines may be soft or sharp, which is each program's choice.
            EXPECT_NEAR(here.dark, there.dark, 0.3 * there.dark + 40);
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(here.color[i], there.color[i], 45);
            if (placed.name == "highlight" || placed.name == "textField") {
                EXPECT_GT(here.dark, 0.8 * lookAt(blank, blank, placed.cell).dark) << "the words below are readable";
            }
        }
        EXPECT_EQ(lookAt(picture, blank, cropBox).pixels, inCells) << name << ", outside of the cells";
    }
}

INSTANTIATE_TEST_SUITE_P(Rotation, SavedKindsTest, testing::Values(0, 90, 270));

/// Of what it says, and how it looks, what is the same before and after a save.
static auto valuesOf(const PDFAnnotation& annotation) {
    const bool isSeen = annotation.color() && annotation.color()->alpha() > 0;
    return std::tuple(annotation.type(), annotation.contents(), annotation.modificationDate(),
                      annotation.creationDate(), isSeen ? annotation.color()->rgba() : 0, annotation.paths().size(),
                      annotation.border().value_or(PDFBorder{annotation.values().defaultLineWidth}));
}

TEST(SavedKinds, ComeBackAsPlainAnnotationsWithTheirValues) {
    const std::vector<Placed> all = everyKind();
    const auto reopened = PDFDocument::fromData(pageWith(all)->dataRepresentation());
    const auto& read = reopened->page(0)->annotations();
    ASSERT_EQ(read.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i].name);
        const PDFAnnotation& before = *all[i].annotation;
        const PDFAnnotation& after = *read[i];
        EXPECT_EQ(typeid(after), typeid(PDFAnnotation));
        EXPECT_EQ(valuesOf(after), valuesOf(before));
        EXPECT_EQ(after.values().flags & 4, 4) << "it prints";
        EXPECT_TRUE(before.modificationDate().isValid());
        const bool isMarkup = Subtype::isMarkup(before.type());
        EXPECT_EQ(after.userName(), isMarkup ? AccountName::current() : QString()) << "who made it";
        EXPECT_EQ(after.creationDate().isValid(), isMarkup) << "and when";
        if (before.font()) {
            EXPECT_EQ(after.font()->family(), before.font()->family());
            EXPECT_EQ(after.font()->bold(), before.font()->bold());
        }
        if (before.type() == Subtype::line) {
            // The rectangle in the file fits the line; the live object keeps the whole page.
            EXPECT_TRUE(all[i].cell.contains(after.bounds())) << after.bounds().width();
            EXPECT_TRUE(after.bounds().contains(before.startPoint()) && after.bounds().contains(before.endPoint()));
            EXPECT_EQ(before.bounds(), QRectF(0, 0, 500, 600));
        } else {
            EXPECT_EQ(after.bounds(), before.bounds());
        }
        for (std::size_t path = 0; path < std::min(before.paths().size(), after.paths().size()); ++path) {
            EXPECT_EQ(after.paths()[path].currentPosition(), before.paths()[path].currentPosition());
            EXPECT_NEAR(after.paths()[path].length(), before.paths()[path].length(), 0.5);
        }
        const Annotation copied = before.copy();
        const PDFAnnotation& copy = *copied;
        EXPECT_EQ(typeid(copy), typeid(before)) << "a copy is of the same kind";
        EXPECT_EQ(copy.contents(), before.contents());
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
        pictures.push_back(page.thumbnail((seen * scale).toSize(), PDFDisplayBox::cropBox));
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
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(pictures[i].size(), plain[i].size()) << rotation << ' ' << i;
            const Look look = lookAt(pictures[i], plain[i], cropBox, 3 * 128); // which is as large
            EXPECT_GT(look.dark, 3000);
            EXPECT_LT(look.pixels, look.dark / 20) << rotation << " degrees, unit " << userUnit << ", picture " << i;
        }
    }
}

TEST(SavedKinds, ANoteIsLeftToTheReadersSign) {
    const QRectF at = cell(0);
    const auto note = colored(std::make_shared<NoteAnnotation>(at), QColor(242, 169, 59));
    const auto document = pageWith({{"note", at, note}});
    const QImage blank = ours(*pageWith({}));
    const Look empty = lookAt(ours(*document), blank, at);
    EXPECT_GT(empty.pixels, 300) << "paper's outline, shadow and tab";
    note->setContents(QStringLiteral("Remember the milk"));
    EXPECT_GT(lookAt(ours(*document), blank, at).dark, empty.dark + 200) << "and now words";

    const QByteArray file = document->dataRepresentation();
    const QByteArray all = PdfPrograms::unpacked(file);
    EXPECT_TRUE(all.contains("/Name /Note") && !all.contains("/AP"));
    const auto reopened = PDFDocument::fromData(file);
    const Annotation read = reopened->page(0)->annotations().at(0);
    const PDFAnnotation& plain = *read;
    EXPECT_EQ(typeid(plain), typeid(PDFAnnotation));
    EXPECT_EQ(read->contents(), note->contents());
    const QImage shown = ours(*reopened);
    EXPECT_GT(lookAt(shown, blank, QRectF(at.left(), at.bottom() - 20, 20, 20)).pixels, 100) << "the sign";
    EXPECT_EQ(lookAt(shown, blank, at.adjusted(21, 0, 0, 0)).pixels, 0) << "and nothing beside it";
}

TEST(SavedKinds, TextIsTextForOtherPrograms) {
    const QRectF at(40, 200, 300, 120);
    const QString words = QStringLiteral("Größe Кириллица Ελληνικά");
    const QByteArray file =
        pageWith({{"text", at, freeText(at, words + QStringLiteral(" 日本語 مرحبا"))}})->dataRepresentation();
    for (const QString& word : words.split(QLatin1Char(' ')))
        EXPECT_TRUE(PdfPrograms::text(file).contains(word)) << word.toStdString();

    // What was changed after reopening has a new date and keeps its font.
    const auto reopened = PDFDocument::fromData(file);
    const Annotation read = reopened->page(0)->annotations().at(0);
    read->setModificationDate(QDateTime(QDate(2001, 1, 1), QTime(0, 0)));
    read->setContents(QStringLiteral("changed"));
    const QByteArray changed = reopened->dataRepresentation();
    const auto again = PDFDocument::fromData(changed);
    EXPECT_GT(again->page(0)->annotations().at(0)->modificationDate().date().year(), 2001);
    EXPECT_EQ(again->page(0)->annotations().at(0)->font()->family(), QStringLiteral("DejaVu Sans"));
    EXPECT_TRUE(PdfPrograms::text(changed).contains(QStringLiteral("changed")));
}

TEST(SavedKinds, PlacedFieldsCanBeFilledElsewhere) {
    std::vector<Placed> fields = everyKind();
    std::erase_if(fields, [](const Placed& each) { return each.annotation->type() != Subtype::widget; });
    fields.back().annotation->setButtonWidgetState(PDFWidgetCellState::off);
    const QTemporaryDir folder;
    QFile script(folder.filePath(QStringLiteral("fill.js")));
    ASSERT_TRUE(script.open(QFile::WriteOnly));
    script.write("var file = new PDFDocument(scriptArgs[0]), fields = file.loadPage(0).getWidgets();\n"
                 "fields[0].setTextValue('from elsewhere');\n"
                 "fields[1].toggle();\n"
                 "fields.forEach(function (field) { field.update(); });\n"
                 "file.save(scriptArgs[1], '');\n");
    script.close();
    const QString filled = folder.filePath(QStringLiteral("filled.pdf"));
    const QStringList arguments{QStringLiteral("run"), script.fileName(), QStringLiteral("FILE"), filled};
    const auto result = PdfPrograms::run(QStringLiteral("mutool"), arguments, pageWith(fields)->dataRepresentation());
    EXPECT_EQ(result.exitCode, 0) << result.errors.toStdString();
    QFile saved(filled);
    ASSERT_TRUE(saved.open(QFile::ReadOnly));
    const QByteArray file = saved.readAll();
    const auto document = PDFDocument::fromData(file);
    const auto& read = document->page(0)->annotations();
    ASSERT_EQ(read.size(), 2U);
    EXPECT_EQ(read[0]->fieldName(), QStringLiteral("text_1"));
    EXPECT_EQ(read[0]->widgetStringValue(), QStringLiteral("from elsewhere"));
    EXPECT_EQ(read[1]->buttonWidgetState(), PDFWidgetCellState::on);
    EXPECT_TRUE(PdfPrograms::text(file).contains(QStringLiteral("from elsewhere"))) << "and shown";
}
