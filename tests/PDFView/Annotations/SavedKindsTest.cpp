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
#include <numeric>
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

Annotation styled(const Annotation& annotation, const QColor& color, double lineWidth) {
    annotation->setColor(color);
    annotation->setBorder(PDFBorder{lineWidth, PDFBorderStyle::solid, {}});
    return annotation;
}

Annotation line(PDFLineStyle start, PDFLineStyle end, QPointF from, QPointF to, double width) {
    auto made = styled(std::make_shared<LineAnnotation>(QRectF(0, 0, 500, 600)), QColor(30, 60, 160), width);
    made->setStartPoint(from);
    made->setEndPoint(to);
    made->setStartLineStyle(start);
    made->setEndLineStyle(end);
    return made;
}

Annotation freeText(const QRectF& bounds, const QString& text, const QFont& font) {
    const auto made = std::make_shared<FreeTextAnnotation>(bounds);
    made->setContents(text);
    made->setFont(font);
    made->setFontColor(QColor(120, 20, 20));
    made->setColor(QColor(Qt::transparent));
    return made;
}

Annotation widget(const QRectF& bounds, PDFWidgetFieldType type, const QString& name) {
    auto made = styled(std::make_shared<PDFAnnotation>(bounds, Subtype::widget), Qt::blue, 2);
    made->setBackgroundColor(QColor(0, 122, 255, 20));
    made->setWidgetFieldType(type);
    made->setWidgetControlType(PDFWidgetControlType::checkBox);
    made->setFieldName(name);
    return made;
}

QImage signature() {
    QImage image(240, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 8, Qt::SolidLine, Qt::RoundCap));
    painter.drawPolyline(QPolygonF({{10, 90}, {80, 10}, {120, 80}, {180, 20}, {230, 60}}));
    return image;
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
                               QFont(QStringLiteral("DejaVu Serif"), 14, QFont::Bold)));
    place("scripts",
          freeText(at, QStringLiteral("日本語 مرحبا naïve ﬁne €"), QFont(QStringLiteral("DejaVu Sans"), 16)));
    place("rectangle", std::make_shared<RectangleAnnotation>(at.adjusted(5, 5, -5, -5)));
    all.back().annotation->setColor(QColor(0, 128, 0));
    place("oval", styled(std::make_shared<OvalAnnotation>(at.adjusted(5, 5, -5, -5)), QColor(200, 0, 200, 128), 6));
    place("signature", std::make_shared<SignatureAnnotation>(signature(), at.adjusted(25, 0, -25, 0)));
    const QPointF reach(40, 20);
    place("squareToClosedArrow", line(square, closedArrow, at.center() - reach, at.center() + reach, 3));
    place("circleToOpenArrow", line(circle, openArrow, at.center() + reach, at.center() - reach, 1));
    place("diamondToNone", line(diamond, none, at.center() - QPointF(40, 0), at.center() + QPointF(40, 0), 5));
    place("dot", line(none, closedArrow, at.center(), at.center(), 20));
    place("ink", styled(std::make_shared<PDFAnnotation>(at, Subtype::ink), Qt::blue, 4));
    QPainterPath curve(QPointF(10, 10));
    curve.cubicTo({40, 90}, {70, -20}, {110, 60});
    all.back().annotation->add(curve);
    place("redaction", styled(std::make_shared<RedactionMarkerAnnotation>(at), Qt::green, 7));
    all.back().annotation->setContents(RedactionMarkerAnnotation::marker);
    for (const auto& [name, type, color] : {std::tuple("highlight", Subtype::highlight, QColor(255, 230, 0)),
                                            {"underline", Subtype::underline, QColor(220, 0, 0)},
                                            {"strikeOut", Subtype::strikeOut, QColor(220, 0, 0)}}) {
        place(name, std::make_shared<PDFAnnotation>(at.adjusted(4, 20, -4, -20), type));
        all.back().annotation->setColor(color);
    }
    place("textField", widget(at.adjusted(2, 20, -2, -20), PDFWidgetFieldType::text, QStringLiteral("text_1")));
    place("checkBox", widget({at.topLeft(), QSizeF(40, 40)}, PDFWidgetFieldType::button, QStringLiteral("checkbox_2")));
    all.back().annotation->setButtonWidgetState(PDFWidgetCellState::on);
    place("textCover", std::make_shared<TextCoverAnnotation>(at));
    return all;
}

std::shared_ptr<PDFDocument> page(int rotation) {
    PdfFixture pdf;
    // Words in every cell, for what must not be hidden.
    QByteArray content = "BT /F1 20 Tf 0.3 g ";
    for (std::size_t i = 0; i < cellCount; ++i) {
        const QPointF at = cell(i).topLeft() + QPointF(10, 28);
        content += "1 0 0 1 " + QByteArray::number(at.x()) + ' ' + QByteArray::number(at.y()) + " Tm (words) Tj ";
    }
    pdf.addPageWithContent(content + "ET",
                           "<< /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> >> >>", {500, 600});
    pdf.setPageKey(0, "/CropBox", PdfFixture::rectArray(cropBox));
    pdf.setPageKey(0, "/Rotate", QByteArray::number(rotation));
    return PDFDocument::fromData(pdf.bytes());
}

QImage ours(const PDFDocument& document) {
    QImage image((cropBox.size() * scale).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(0, image.height());
    painter.scale(scale, -scale);
    document.page(0)->draw(PDFDisplayBox::cropBox, painter);
    return image;
}

/// Another program's picture of the page, turned back.
QImage theirs(const QString& program, const QByteArray& file, int rotation) {
    const QStringList arguments =
        program == QLatin1String("mutool")
            ? QStringList{QStringLiteral("draw"), QStringLiteral("-r"), QStringLiteral("144"), QStringLiteral("-F"),
                          QStringLiteral("ppm"),  QStringLiteral("-o"), QStringLiteral("-"),   QStringLiteral("FILE")}
            : QStringList{QStringLiteral("-cropbox"), QStringLiteral("-r"), QStringLiteral("144"),
                          QStringLiteral("-singlefile"), QStringLiteral("FILE")};
    return QImage::fromData(PdfPrograms::run(program, arguments, file).output, "PPM")
        .transformed(QTransform().rotate(-rotation))
        .convertToFormat(QImage::Format_RGB32);
}

/// What an annotation changes in a part of a picture.
struct Look {
    int pixels = 0;
    int dark = 0; ///< pixels as dark as the page's words, changed or not
    std::array<double, 3> color{};
};

Look lookAt(const QImage& picture, const QImage& blank, const QRectF& area) {
    Look look;
    const QRectF onPage = area.translated(-cropBox.topLeft());
    const QRect pixels = QRectF(onPage.left() * scale, (cropBox.height() - onPage.bottom()) * scale,
                                onPage.width() * scale, onPage.height() * scale)
                             .toRect()
                             .intersected(picture.rect());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            const QRgb p = picture.pixel(x, y);
            const QRgb q = blank.pixel(x, y);
            const std::array<int, 3> parts{qRed(p), qGreen(p), qBlue(p)};
            look.dark += std::accumulate(parts.begin(), parts.end(), 0) < 330 ? 1 : 0;
            if (std::abs(parts[0] - qRed(q)) + std::abs(parts[1] - qGreen(q)) + std::abs(parts[2] - qBlue(q)) < 20)
                continue;
            ++look.pixels;
            for (std::size_t i = 0; i < 3; ++i)
                look.color[i] += parts[i];
        }
    for (double& part : look.color)
        part /= std::max(1, look.pixels);
    return look;
}

/// Pictures of a file's page by this program and by two others.
std::vector<std::pair<std::string, QImage>> pictures(const QByteArray& file, int rotation) {
    return {{"reopened", ours(*PDFDocument::fromData(file))},
            {"mutool", theirs(QStringLiteral("mutool"), file, rotation)},
            {"pdftoppm", theirs(QStringLiteral("pdftoppm"), file, rotation)}};
}

std::shared_ptr<PDFDocument> pageWith(const std::vector<Placed>& all, int rotation = 0) {
    auto document = page(rotation);
    for (const Placed& placed : all)
        document->page(0)->addAnnotation(placed.annotation);
    return document;
}

class SavedKindsTest : public testing::TestWithParam<int> {};

} // namespace

TEST_P(SavedKindsTest, LookTheSameToEveryReader) {
    const std::vector<Placed> all = everyKind();
    const auto document = pageWith(all, GetParam());
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const QImage blankLive = ours(*page(GetParam()));
    const QImage live = ours(*document);
    const auto blanks = pictures(page(GetParam())->dataRepresentation(), GetParam());
    const auto saved = pictures(file, GetParam());
    for (std::size_t reader = 0; reader < saved.size(); ++reader) {
        const QImage& blank = blanks[reader].second;
        const QImage& picture = saved[reader].second;
        ASSERT_EQ(picture.size(), live.size()) << saved[reader].first;
        int inCells = 0;
        for (const Placed& placed : all) {
            SCOPED_TRACE(saved[reader].first + ", " + placed.name);
            const Look here = lookAt(picture, blank, placed.cell);
            const Look there = lookAt(live, blankLive, placed.cell);
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
        EXPECT_EQ(lookAt(picture, blank, cropBox).pixels, inCells) << saved[reader].first << ", outside of the cells";
    }
}

INSTANTIATE_TEST_SUITE_P(Rotation, SavedKindsTest, testing::Values(0, 90, 270));

TEST(SavedKinds, ComeBackAsPlainAnnotationsWithTheirValues) {
    const std::vector<Placed> all = everyKind();
    const auto document = pageWith(all);
    const auto reopened = PDFDocument::fromData(document->dataRepresentation());
    const auto& read = reopened->page(0)->annotations();
    ASSERT_EQ(read.size(), all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(all[i].name);
        const PDFAnnotation& before = *all[i].annotation;
        const PDFAnnotation& after = *read[i];
        EXPECT_EQ(typeid(after), typeid(PDFAnnotation));
        EXPECT_EQ(after.type(), before.type());
        EXPECT_EQ(after.contents(), before.contents());
        EXPECT_EQ(after.values().flags & 4, 4) << "it prints";
        EXPECT_TRUE(before.modificationDate().isValid());
        EXPECT_EQ(after.modificationDate(), before.modificationDate());
        const bool isMarkup = Subtype::isMarkup(before.type());
        EXPECT_EQ(after.userName(), isMarkup ? AccountName::current() : QString()) << "who made it";
        EXPECT_EQ(after.creationDate().isValid(), isMarkup) << "and when";
        EXPECT_EQ(after.creationDate(), before.creationDate());
        EXPECT_EQ(std::pair(after.startPoint(), after.endPoint()), std::pair(before.startPoint(), before.endPoint()));
        EXPECT_EQ(std::pair(after.startLineStyle(), after.endLineStyle()),
                  std::pair(before.startLineStyle(), before.endLineStyle()));
        EXPECT_EQ(after.quadrilateralPoints().size(), before.quadrilateralPoints().size());
        const bool isSeen = before.color() && before.color()->alpha() > 0;
        ASSERT_EQ(after.color().has_value(), isSeen);
        if (isSeen) {
            EXPECT_EQ(after.color()->rgba(), before.color()->rgba());
        }
        if (before.border()) {
            EXPECT_EQ(after.border(), before.border());
        } else if (before.values().defaultLineWidth != 1) {
            EXPECT_EQ(after.border()->lineWidth, before.values().defaultLineWidth);
        }
        if (before.font()) {
            EXPECT_EQ(after.font()->family(), before.font()->family());
            EXPECT_EQ(after.font()->pointSizeF(), before.font()->pointSizeF());
            EXPECT_EQ(after.font()->bold(), before.font()->bold());
            EXPECT_EQ(after.fontColor()->rgb(), before.fontColor()->rgb());
        }
        if (before.type() == Subtype::line) {
            // The rectangle in the file fits the line; the live object keeps the whole page.
            EXPECT_TRUE(all[i].cell.contains(after.bounds())) << after.bounds().width();
            EXPECT_TRUE(after.bounds().contains(before.startPoint()) && after.bounds().contains(before.endPoint()));
            EXPECT_EQ(before.bounds(), QRectF(0, 0, 500, 600));
        } else {
            EXPECT_EQ(after.bounds(), before.bounds());
        }
        ASSERT_EQ(after.paths().size(), before.paths().size());
        for (std::size_t path = 0; path < before.paths().size(); ++path) {
            const QPainterPath& curve = before.paths()[path];
            const QPainterPath& pieces = after.paths()[path];
            QPainterPathStroker around;
            around.setWidth(0.4);
            for (int at = 1; at + 1 < pieces.elementCount(); ++at)
                EXPECT_TRUE(around.createStroke(curve).contains(QPointF(pieces.elementAt(at))));
            EXPECT_EQ(pieces.currentPosition(), curve.currentPosition());
            EXPECT_NEAR(pieces.length(), curve.length(), 0.5);
        }
        const Annotation copied = before.copy();
        const PDFAnnotation& copy = *copied;
        EXPECT_EQ(typeid(copy), typeid(before)) << "a copy is of the same kind";
        EXPECT_EQ(copy.contents(), before.contents());
    }
}

/// Pictures of words, a signature and a note that are placed alike as the page is seen, whose width and height are 400
/// and 500 points: live, reopened, changed then, and changed and saved as others show it, without the note.
std::vector<QImage> placedAsSeen(int rotation, double userUnit) {
    const QSizeF shown(400, 500);
    const QSize pixels = (shown * scale).toSize();
    PdfFixture pdf;
    pdf.addPageWithContent("", "<< >>", (rotation % 180 == 0 ? shown : shown.transposed()) / userUnit);
    pdf.setPageKey(0, "/Rotate", QByteArray::number(rotation));
    pdf.setPageKey(0, "/UserUnit", QByteArray::number(userUnit));
    const auto document = PDFDocument::fromData(pdf.bytes());
    const auto toPage = document->page(0)->displayTransform(PDFDisplayBox::cropBox).inverted();
    const auto at = [&](double x, double y, double width, double height) {
        return toPage.mapRect(QRectF(x, y, width, height));
    };
    document->page(0)->addAnnotation(freeText(at(20, 30, 200, 60), QStringLiteral("Words that wrap in the box"),
                                              QFont(QStringLiteral("DejaVu Sans"), 16)));
    document->page(0)->addAnnotation(std::make_shared<SignatureAnnotation>(signature(), at(30, 150, 160, 66)));
    const auto note = std::make_shared<NoteAnnotation>(at(200, 300, 120, 80));
    note->setContents(QStringLiteral("Remember"));
    document->page(0)->addAnnotation(note);

    std::vector<QImage> pictures{document->page(0)->thumbnail(pixels, PDFDisplayBox::cropBox)};
    const auto reopened = PDFDocument::fromData(document->dataRepresentation());
    pictures.push_back(reopened->page(0)->thumbnail(pixels, PDFDisplayBox::cropBox));
    const auto text = reopened->page(0)->annotations().at(0);
    EXPECT_NEAR(text->font()->pointSizeF(), 16, 0.01);
    text->setContents(QStringLiteral("Other words, which wrap"));
    pictures.push_back(reopened->page(0)->thumbnail(pixels, PDFDisplayBox::cropBox));
    EXPECT_EQ(reopened->page(0)->annotations().at(2)->values().flags, rotation == 0 ? 4 : 4 + 16) << "no turned sign";
    reopened->page(0)->removeAnnotation(reopened->page(0)->annotations().at(2));
    const QByteArray file = reopened->dataRepresentation();
    for (const QString& command : {QStringLiteral("mutool draw -w 800 -h 1000 -F ppm -o - FILE"),
                                   QStringLiteral("pdftoppm -singlefile -r %1 FILE").arg(72 * scale * userUnit)}) {
        const QStringList parts = command.split(u' ');
        pictures.push_back(QImage::fromData(PdfPrograms::run(parts[0], parts.mid(1), file).output, "PPM"));
    }
    return pictures;
}

TEST(SavedKinds, StandUprightAndInPointsOnEveryPageAsItIsSeen) {
    const std::vector<QImage> plain = placedAsSeen(0, 1);
    const std::pair<int, double> pages[] = {{90, 1}, {180, 1}, {270, 1}, {0, 2}, {90, 2}};
    for (const auto& [rotation, userUnit] : pages) {
        const std::vector<QImage> pictures = placedAsSeen(rotation, userUnit);
        for (std::size_t i = 0; i < plain.size(); ++i) {
            const QImage one = plain[i].convertToFormat(QImage::Format_Grayscale8);
            const QImage other = pictures[i].convertToFormat(QImage::Format_Grayscale8);
            ASSERT_EQ(one.size(), other.size()) << rotation << ' ' << i;
            int dark = 0;
            int different = 0;
            for (int y = 0; y < one.height(); ++y)
                for (int x = 0; x < one.width(); ++x) {
                    dark += one.constScanLine(y)[x] < 128 ? 1 : 0;
                    different += std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]) > 128 ? 1 : 0;
                }
            EXPECT_GT(dark, 3000);
            EXPECT_LT(different, dark / 20) << rotation << " degrees, unit " << userUnit << ", picture " << i;
        }
    }
}

TEST(SavedKinds, ANoteIsLeftToTheReadersSign) {
    const QRectF at = cell(0);
    const auto note = std::make_shared<NoteAnnotation>(at);
    note->setColor(QColor(242, 169, 59));
    const auto document = pageWith({{"note", at, note}});
    const QImage blank = ours(*page(0));
    const Look empty = lookAt(ours(*document), blank, at);
    EXPECT_GT(empty.pixels, 300) << "paper's outline, shadow and tab";
    note->setContents(QStringLiteral("Remember the milk"));
    EXPECT_GT(lookAt(ours(*document), blank, at).dark, empty.dark + 200) << "and now words";

    const QByteArray file = document->dataRepresentation();
    const QByteArray all = PdfPrograms::unpacked(file);
    EXPECT_TRUE(all.contains("/Name /Note"));
    EXPECT_FALSE(all.contains("/AP"));
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
    const auto text = freeText(at, words + QStringLiteral(" 日本語 مرحبا"), QFont(QStringLiteral("DejaVu Sans"), 16));
    const auto document = pageWith({{"text", at, text}});
    const QByteArray file = document->dataRepresentation();
    for (const QString& word : words.split(QLatin1Char(' ')))
        EXPECT_TRUE(PdfPrograms::text(file).contains(word)) << word.toStdString();

    // What was changed after reopening has a new date and keeps its font.
    const auto reopened = PDFDocument::fromData(file);
    const Annotation read = reopened->page(0)->annotations().at(0);
    EXPECT_EQ(read->contents(), text->contents());
    read->setModificationDate(QDateTime(QDate(2001, 1, 1), QTime(0, 0)));
    read->setContents(QStringLiteral("changed"));
    const auto again = PDFDocument::fromData(reopened->dataRepresentation());
    EXPECT_GT(again->page(0)->annotations().at(0)->modificationDate().date().year(), 2001);
    EXPECT_EQ(again->page(0)->annotations().at(0)->font()->family(), QStringLiteral("DejaVu Sans"));
    EXPECT_TRUE(PdfPrograms::text(again->dataRepresentation()).contains(QStringLiteral("changed")));
}

TEST(SavedKinds, PlacedFieldsCanBeFilledElsewhere) {
    std::vector<Placed> fields;
    for (const Placed& placed : everyKind())
        if (placed.annotation->type() == Subtype::widget)
            fields.push_back(placed);
    fields.back().annotation->setButtonWidgetState(PDFWidgetCellState::off);
    const QTemporaryDir folder;
    QFile script(folder.filePath(QStringLiteral("fill.js")));
    ASSERT_TRUE(script.open(QFile::WriteOnly));
    script.write("var file = new PDFDocument(scriptArgs[0]);\n"
                 "var page = file.loadPage(0);\n"
                 "page.getWidgets().forEach(function (field) {\n"
                 "    if (field.getFieldType() == 'text') field.setTextValue('from elsewhere');\n"
                 "    else field.toggle();\n"
                 "    field.update();\n"
                 "});\n"
                 "file.save(scriptArgs[1], '');\n");
    script.close();
    const QString filled = folder.filePath(QStringLiteral("filled.pdf"));
    const auto result = PdfPrograms::run(QStringLiteral("mutool"),
                                         {QStringLiteral("run"), script.fileName(), QStringLiteral("FILE"), filled},
                                         pageWith(fields)->dataRepresentation());
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
