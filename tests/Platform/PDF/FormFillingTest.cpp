#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFFormField.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

constexpr QSizeF pageSize(240, 160);
constexpr QRectF area(20, 40, 160, 80); // of the field, page coordinates
constexpr int zoom = 3;                 // pixels in a point

struct Filling {
    const char* name;
    QByteArray keys;
    QStringList value;
    QString shown = {};      // by pdftotext, blanks and breaks as one blank; null for the value itself
    QByteArray written = {}; // is in the unpacked file
};

const QByteArray frame = "/MK << /BC [0 0 1] /BG [1 1 0.8] >> ";
const QByteArray lines = "/FT /Tx /Ff 4096 " + frame;
const QByteArray fruit = "/Opt [[(a) (Apple)] [(b) (Banana)] [(c) (Cherry)] [(d) (Date)] [(e) (Elder)]] ";

std::vector<Filling> fillings() {
    const auto text = [](const char* words) { return QString::fromUtf8(words); };
    return {
        {"text", "/FT /Tx /DA (/Helv 14 Tf 1 0 0 rg) " + frame, {text("Plain (ü) \\ €")}, {}, "1 0 0 rg"},
        {"automatic", "/FT /Tx /DA (/Helv 0 Tf 0 g) /BS << /W 2 /S /B >> " + frame, {text("Fits")}},
        {"wide",
         "/FT /Tx /DA (/Helv 0 Tf 0 g) /Q 1 /BS << /W 2 /S /I >> " + frame,
         {text("as wide as the box is, or so")}},
        {"right", "/FT /Tx /Q 2 /DA (/Helv 12 Tf 0 g) /BS << /W 1 /S /U >> " + frame, {text("Right")}},
        {"wrapped",
         lines + "/DA (/Helv 12 Tf 0 g) /BS << /W 1 /S /D /D [4 2] >> ",
         {text("words that take more than one line\nand a paragraph")}},
        {"wrapped to fit",
         lines + "/DA (/Helv 0 Tf 0 g)",
         {QStringList(40, text("many words")).join(QLatin1Char(' '))}},
        {"comb", "/FT /Tx /Ff 16777216 /MaxLen 6 /DA (/Helv 14 Tf 0 g) " + frame, {text("A1B2")}, text("A 1 B 2")},
        {"password", "/FT /Tx /Ff 8192 /DA (/Helv 14 Tf 0 g) " + frame, {text("xyz")}, QString(3, QChar(0x2022))},
        {"foreign", "/FT /Tx /DA (/Helv 14 Tf 0 g) " + frame, {text("Ωδή")}},
        {"differences", "/FT /Tx /DA (/Doc 14 Tf 0 g) " + frame, {text("don’t 5 €–")}},
        {"no encoding", "/FT /Tx /DA (/Std 14 Tf 0 g) " + frame, {text("it's ‘so’ ß")}},
        {"composite", "/FT /Tx /DA (/Part 14 Tf 0 g) " + frame, {text("Größe")}, {}, "/Times-Bold"},
        {"symbols", "/FT /Tx /DA (/Zapf 14 Tf 0 g) " + frame, {text("abc")}},
        {"unknown", "/FT /Tx /Q 2 /DA (/CoBo 14 Tf 0 g) " + frame, {text("mm ii")}, {}, "/Courier-Bold"},
        {"turned", "/FT /Tx /DA (/Helv 14 Tf 0 g) /MK << /R 90 /BC [0] >>", {text("up")}, {}, "/Matrix [ 0 1 -1 0"},
        {"combo", "/FT /Ch /Ff 131072 /DA (/Helv 14 Tf 0 g) " + fruit + frame, {text("b")}, text("Banana"), "/V (b)"},
        {"own words", "/FT /Ch /Ff 393216 /DA (/Helv 14 Tf 0 g) " + fruit + frame, {text("Fig")}, {}, "/V (Fig)"},
        {"list",
         "/FT /Ch /Ff 2097152 /DA (/Helv 12 Tf 0 g) /TI 1 " + fruit + frame,
         {text("b"), text("d")},
         text("Banana Cherry Date Elder"),
         "/I [ 1 3 ]"},
        {"nothing",
         "/FT /Ch /DA (/Helv 12 Tf 0 g) /V (c) /I [2] " + fruit + frame,
         {},
         text("Apple Banana Cherry Date Elder")},
        {"check", "/FT /Btn /MK << /CA (8) /BC [0] >>", {text("Yes")}, text(""), "/AS /Yes"},
        {"radio", "/FT /Btn /Ff 32768 /MK << /CA (l) /BC [0] >>", {text("Yes")}, text(""), "/AS /Yes"},
        {"star", "/FT /Btn /MK << /CA (H) /BC [0] /R 180 >>", {text("Yes")}, text(""), "/V /Yes"},
    };
}

/// The field is on the first of two pages.
QByteArray formWith(const Filling& filling) {
    PdfFixture pdf;
    pdf.addPage({}, pageSize);
    pdf.addPage({}, pageSize);
    const QByteArray script = "<< /S /JavaScript /JS (leave me alone) >>";
    const QByteArray field =
        pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Widget /F 4 /T (field) /Rect " + PdfFixture::rectArray(area) +
                                 " /AA << /K " + script + " /F " + script + " >> " + filling.keys + " >>");
    pdf.appendToArray(pdf.form(), "/Fields", field);
    pdf.appendToArray(pdf.form(), "/CO", field);
    pdf.setKey(pdf.form(), "/DR",
               "<< /Font << /Helv << /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >> "
               "/Doc << /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding << /Differences [ 39 /quotesingle "
               "128 /bullet /dagger 133 /endash 140 /quotedblbase 144 /quoteright 160 /uni20AC ] >> >> "
               "/Std << /Type /Font /Subtype /Type1 /BaseFont /Times-Roman >> "
               "/Zapf << /Type /Font /Subtype /Type1 /BaseFont /ZapfDingbats >> "
               "/Part << /Type /Font /Subtype /Type0 /BaseFont /ABCDEF+Georgia-Bold /Encoding /Identity-H >> >> >>");
    pdf.setKey(pdf.form(), "/XFA", "[(template) " + pdf.addStream("<< >>", "<xdp/>") + ']');
    pdf.setPageKey(0, "/Bulk", pdf.addStream("<< >>", QByteArray(100'000, 'x'))); // so that a save can append
    return pdf.bytes();
}

PDFFormField fieldOf(const std::shared_ptr<PDFDocument>& document) {
    return PDFFormField::of(document->page(0)->annotations().front()).value();
}

QImage pictureBy(const QString& line, const QByteArray& file) {
    return QImage::fromData(PdfPrograms::run(line.arg(72 * zoom), file).output).convertToFormat(QImage::Format_RGB32);
}

/// Where the picture is neither the paper nor the field's background: the box around it, and how many pixels.
struct Ink {
    QRect box;
    int count = 0;
};

Ink inkOf(const QImage& picture) {
    Ink ink;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (qGray(picture.pixel(x, y)) < 150) {
                ink.box |= QRect(x, y, 1, 1);
                ++ink.count;
            }
    return ink;
}

/// The first page looks the same now, in its saved file, and in other programs' eyes. Returns where its ink is.
Ink expectSameInk(PDFDocument& document) {
    const QSize size = (document.page(0)->displaySize(PDFDisplayBox::cropBox) * zoom).toSize();
    const Ink live = inkOf(document.page(0)->thumbnail(size, PDFDisplayBox::cropBox));
    EXPECT_GT(live.count, 100);
    const QByteArray file = document.dataRepresentation();
    const std::pair<const char*, QImage> others[] = {
        {"this", PDFDocument::fromData(file)->page(0)->thumbnail(size, PDFDisplayBox::cropBox)},
        {"pdftoppm", pictureBy(QStringLiteral("pdftoppm -r %1 -png FILE"), file)},
        {"mutool", pictureBy(QStringLiteral("mutool draw -q -r %1 -F png -o - FILE"), file)},
    };
    for (const auto& [program, picture] : others) {
        SCOPED_TRACE(program);
        EXPECT_EQ(picture.size(), size);
        const Ink ink = inkOf(picture);
        constexpr int tolerance = 2 * zoom; // two points
        EXPECT_NEAR(ink.box.left(), live.box.left(), tolerance);
        EXPECT_NEAR(ink.box.right(), live.box.right(), tolerance);
        EXPECT_NEAR(ink.box.top(), live.box.top(), tolerance);
        EXPECT_NEAR(ink.box.bottom(), live.box.bottom(), tolerance);
        EXPECT_NEAR(ink.count, live.count, 0.35 * live.count);
    }
    return live;
}

} // namespace

class FormFilling : public testing::TestWithParam<bool> {};

TEST_P(FormFilling, OtherProgramsShowTheValue) {
    for (const Filling& filling : fillings()) {
        SCOPED_TRACE(filling.name);
        const QByteArray before = formWith(filling);
        const auto document = PDFDocument::fromData(before);
        ASSERT_TRUE(fieldOf(document).setValue(filling.value));
        if (!GetParam())
            document->removePage(1);
        const QByteArray file = document->dataRepresentation();
        EXPECT_EQ(file.startsWith(before), GetParam());
        EXPECT_EQ(PdfPrograms::complaints(file), "");

        const auto reopened = PDFDocument::fromData(file);
        EXPECT_EQ(fieldOf(reopened).value(),
                  filling.value.isEmpty() && fieldOf(reopened).kind() == PDFFormField::Kind::text
                      ? QStringList{QString()}
                      : filling.value);
        const QString shown = PdfPrograms::text(file);
        EXPECT_EQ(shown.simplified(), filling.shown.isNull() ? filling.value.value(0).simplified() : filling.shown);
        const QByteArray places = PdfPrograms::run(QStringLiteral("pdftotext -bbox FILE -"), file).output;
        const double left = places.mid(places.indexOf("xMin=\"") + 6, 5).toDouble();
        EXPECT_EQ(left > area.center().x() + 20, filling.keys.contains("/Q 2")) << left;
        const bool isMoved = filling.keys.contains("/Q") || filling.keys.contains("/R ");
        EXPECT_LT(left, isMoved ? area.right() : area.left() + 25) << "in the first cell of a comb, too";
        EXPECT_EQ(shown.trimmed().count(QLatin1Char('\n')) > 1,
                  filling.keys.contains("/Ff 4096") || filling.shown.contains(QStringLiteral("Date")));
        const QByteArray all = PdfPrograms::unpacked(file).simplified();
        EXPECT_TRUE(all.contains(filling.written)) << filling.written.toStdString();
        EXPECT_EQ(all.count("(leave me alone)"), 2);
        EXPECT_TRUE(all.contains("/CO ["));
        EXPECT_FALSE(all.contains("/XFA")) << "it would show the old value";
        const QByteArray form = PdfPrograms::run(QStringLiteral("mutool show FILE trailer/Root/AcroForm"), file).output;
        EXPECT_TRUE(form.contains("/Fields")) << form.toStdString();
        EXPECT_FALSE(form.contains("NeedAppearances")) << "every look is there";
    }
}

INSTANTIATE_TEST_SUITE_P(AppendOrRewrite, FormFilling, testing::Bool());

TEST(FormFillingLook, ScreenAndFileLookTheSame) {
    for (const Filling& filling : fillings()) {
        SCOPED_TRACE(filling.name);
        const auto document = PDFDocument::fromData(formWith(filling));
        ASSERT_TRUE(fieldOf(document).setValue(filling.value));
        expectSameInk(*document);
    }
}

TEST(FormFillingLook, PlacedFieldsStandUprightOnTurnedPages) {
    for (const int turn : {90, 180, 270}) {
        SCOPED_TRACE(turn);
        PdfFixture pdf;
        pdf.addPage({}, pageSize);
        pdf.setPageKey(0, "/Rotate", QByteArray::number(turn));
        const auto document = PDFDocument::fromData(pdf.bytes());
        const auto field = std::make_shared<PDFAnnotation>(QRectF(40, 20, 100, 110), PDFAnnotationSubtype::widget);
        field->setWidgetFieldType(PDFWidgetFieldType::text);
        field->setWidgetStringValue(QStringLiteral("as it is seen"));
        field->setWidgetRotation(turn);
        document->page(0)->addAnnotation(field);
        const Ink ink = expectSameInk(*document);
        EXPECT_GT(ink.box.width(), 3 * ink.box.height());
        const QByteArray file = document->dataRepresentation();
        EXPECT_TRUE(PdfPrograms::unpacked(file).contains("/R " + QByteArray::number(turn)));
        EXPECT_EQ(PDFDocument::fromData(file)->page(0)->annotations()[0]->widgetRotation(), turn);
    }
}

TEST(FormFillingLook, ValuesShowWhereTheFormAsksForLooks) {
    for (const bool asks : {false, true}) {
        PdfFixture pdf;
        pdf.addPage({}, pageSize);
        const QByteArray blank = pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 160 80] >>", "");
        for (const char* keys : {"/FT /Tx /V (value) /T (a) /Rect [20 40 100 80]",
                                 "/FT /Ch /Ff 131072 /V (c) /Opt [[(c) (Choice)]] /T (b) /Rect [120 40 200 80]"})
            pdf.appendToArray(pdf.form(), "/Fields",
                              pdf.addAnnotation(0, "<< /Subtype /Widget /F 4 /DA (/Helv 14 Tf 0 g) /AP << /N " + blank +
                                                       " >> " + keys + " >>"));
        pdf.setKey(pdf.form(), "/NeedAppearances", asks ? "true" : "false");
        const auto document = PDFDocument::fromData(pdf.bytes());
        const QImage picture = document->page(0)->thumbnail(pageSize.toSize() * zoom, PDFDisplayBox::cropBox);
        for (const QRect& half : {picture.rect().adjusted(0, 0, -picture.width() / 2, 0),
                                  picture.rect().adjusted(picture.width() / 2, 0, 0, 0)})
            EXPECT_EQ(inkOf(picture.copy(half)).count > 100, asks);
        EXPECT_FALSE(document->page(0)->isModified());
    }
}

TEST(FormFillingLook, ButtonsKeepTheLooksOfTheirFile) {
    PdfFixture pdf;
    pdf.addPage({}, pageSize);
    const QByteArray bbox = "<< /Type /XObject /Subtype /Form /BBox [0 0 10 10] /Matrix [2 0 0 2 5 5] >>";
    const QByteArray red = pdf.addStream(bbox, "1 0 0 rg 0 0 10 5 re f");
    const QByteArray blue = pdf.addStream(bbox, "0 0 1 rg 0 0 10 10 re f");
    for (const auto& [name, looks] :
         {std::pair("both", "/On " + red + " /Off " + blue), std::pair("one", "/On " + red)})
        pdf.appendToArray(
            pdf.form(), "/Fields",
            pdf.addAnnotation(
                0, "<< /Subtype /Widget /FT /Btn /F 4 /T (" + QByteArray(name) + ") /V /Off /AS /Off /Rect " +
                       PdfFixture::rectArray(name[0] == 'b' ? QRectF(20, 40, 40, 40) : QRectF(100, 40, 40, 40)) +
                       " /AP << /N << " + looks + " >> >> >>"));
    const QByteArray bytes = pdf.bytes();
    const auto document = PDFDocument::fromData(bytes);
    const auto at = [&](const PDFDocument& of, double x, double y) {
        const QImage picture = of.page(0)->thumbnail(pageSize.toSize(), PDFDisplayBox::cropBox);
        return QColor(picture.pixel(int(x), int(pageSize.height() - y)));
    };
    const auto set = [&](const char* state) {
        for (const auto& widget : document->page(0)->annotations())
            EXPECT_TRUE(PDFFormField::of(widget)->setValue({QString::fromLatin1(state)}));
    };
    EXPECT_EQ(at(*document, 40, 70), QColor(Qt::blue));
    set("On");
    const auto saved = PDFDocument::fromData(document->dataRepresentation());
    for (const PDFDocument* each : {document.get(), saved.get()}) {
        for (const double left : {20.0, 100.0}) {
            EXPECT_EQ(at(*each, left + 20, 50), QColor(Qt::red));
            EXPECT_EQ(at(*each, left + 20, 70), QColor(Qt::white));
        }
    }
    // Off again, but still changed, since the widget was moved.
    for (const auto& widget : document->page(0)->annotations())
        widget->setBounds(widget->bounds().translated(0, 30));
    set("Off");
    EXPECT_EQ(at(*document, 40, 100), QColor(Qt::blue));
    EXPECT_EQ(at(*document, 120, 80), QColor(Qt::white)) << "a file that shows nothing for off";
}

TEST(FormFillingWidgets, EachShowsWhatTheFontOfTheFormLacks) {
    PdfFixture pdf;
    for (int i = 0; i < 3; ++i)
        pdf.addPage({}, pageSize);
    pdf.addSharedTextField(QStringLiteral("shared"), {{0, area}, {1, area}, {2, area}}, QStringLiteral("old"));
    const auto document = PDFDocument::fromData(pdf.bytes());
    EXPECT_TRUE(fieldOf(document).setValue({QStringLiteral("Ωδή")}));
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    EXPECT_FALSE(PdfPrograms::unpacked(file).contains("/NeedAppearances true"));
    for (int page = 1; page <= 3; ++page)
        EXPECT_EQ(PdfPrograms::text(file, page).simplified(), QStringLiteral("Ωδή")) << page;

    pdf.setKey(pdf.form(), "/NeedAppearances", "true"); // which the file may ask for, never the value
    const auto asking = PDFDocument::fromData(pdf.bytes());
    EXPECT_TRUE(fieldOf(asking).setValue({QStringLiteral("Ωδή")}));
    EXPECT_TRUE(PdfPrograms::unpacked(asking->dataRepresentation()).contains("/NeedAppearances true"));
}
