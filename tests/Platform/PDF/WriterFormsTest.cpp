#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

namespace {

using Annotation = std::shared_ptr<PDFAnnotation>;

Annotation textField(const QString& name, const QString& value, const QRectF& bounds = {40, 40, 160, 24}) {
    auto field = std::make_shared<PDFAnnotation>(bounds, PDFAnnotationSubtype::widget);
    field->setWidgetFieldType(PDFWidgetFieldType::text);
    field->setFieldName(name);
    field->setWidgetStringValue(value);
    return field;
}

Annotation checkBox(const QString& name) {
    auto field = std::make_shared<PDFAnnotation>(QRectF(40, 80, 20, 20), PDFAnnotationSubtype::widget);
    field->setWidgetFieldType(PDFWidgetFieldType::button);
    field->setWidgetControlType(PDFWidgetControlType::checkBox);
    field->setFieldName(name);
    return field;
}

/// The fields of all pages by name, with their values; states of buttons as "on" and "off".
QMap<QString, QStringList> values(const PDFDocument& document) {
    QMap<QString, QStringList> all;
    for (int page = 0; page < document.pageCount(); ++page)
        for (const auto& annotation : document.page(page)->annotations()) {
            if (annotation->type() != PDFAnnotationSubtype::widget)
                continue;
            const bool isButton = annotation->widgetFieldType() == PDFWidgetFieldType::button;
            const bool isOn = annotation->buttonWidgetState() == PDFWidgetCellState::on;
            all[annotation->fieldName()] +=
                isButton ? isOn ? QStringLiteral("on") : QStringLiteral("off") : annotation->widgetStringValue();
        }
    return all;
}

Annotation field(const PDFDocument& document, const QString& name, int which = 0) {
    for (int page = 0; page < document.pageCount(); ++page)
        for (const auto& annotation : document.page(page)->annotations())
            if (annotation->fieldName() == name && which-- == 0)
                return annotation;
    ADD_FAILURE() << "no field " << name.toStdString();
    return std::make_shared<PDFAnnotation>(QRectF(), PDFAnnotationSubtype::widget);
}

void addBulk(PdfFixture& pdf) {
    for (int i = 0; i < 20; ++i)
        pdf.addPage({QString(500, QLatin1Char('w'))});
}

QStringList words(const QByteArray& file, int page) {
    return PdfPrograms::text(file, page).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

} // namespace

TEST(WriterFormsTest, PlacedFieldsBecomeAForm) {
    PdfFixture pdf;
    pdf.addPage({});
    const auto document = PDFDocument::fromData(pdf.bytes());
    document->page(0)->addAnnotation(textField(QStringLiteral("text_1"), QStringLiteral("Hello")));
    document->page(0)->addAnnotation(textField(QStringLiteral("text_1"), QString()));
    document->page(0)->addAnnotation(checkBox(QStringLiteral("checkbox_2")));
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    EXPECT_TRUE(PdfPrograms::text(file).contains(QStringLiteral("Hello")));

    const auto reopened = PDFDocument::fromData(file);
    EXPECT_EQ(values(*reopened), (QMap<QString, QStringList>{{QStringLiteral("text_1"), {QStringLiteral("Hello")}},
                                                             {QStringLiteral("text_1_2"), {QString()}},
                                                             {QStringLiteral("checkbox_2"), {QStringLiteral("off")}}}));
    const QByteArray all = PdfPrograms::unpacked(file);
    for (const char* part : {"/AcroForm", "/Helv", "/ZapfDingbats", "/Yes", "/Off", "/DA (/Helv 0 Tf 0 g)"})
        EXPECT_TRUE(all.contains(part)) << part;

    // A new field beside those of the file, and one of those goes.
    reopened->page(0)->addAnnotation(textField(QStringLiteral("text_1"), QStringLiteral("third")));
    reopened->page(0)->removeAnnotation(field(*reopened, QStringLiteral("text_1")));
    field(*reopened, QStringLiteral("checkbox_2"))->setButtonWidgetState(PDFWidgetCellState::on);
    const QByteArray again = reopened->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(again), "");
    const auto last = values(*PDFDocument::fromData(again));
    EXPECT_EQ(last.value(QStringLiteral("checkbox_2")), QStringList{QStringLiteral("on")});
    EXPECT_EQ(last.size(), 3);
    EXPECT_EQ(last.value(QStringLiteral("text_1_3")), QStringList{QStringLiteral("third")});
}

class FillingTest : public testing::TestWithParam<bool> {};

TEST_P(FillingTest, ValuesReachTheFieldAndAllItsWidgets) {
    PdfFixture pdf;
    pdf.addTextField(pdf.addPage({}), QStringLiteral("name"), {40, 700, 200, 20}, QStringLiteral("old"));
    pdf.addCheckBox(0, QStringLiteral("agree"), {40, 650, 12, 12}, false);
    pdf.addRadioGroup(QStringLiteral("choice"), {{0, {40, 600, 12, 12}, "A"}, {0, {60, 600, 12, 12}, "B"}}, "A");
    pdf.addPage({});
    pdf.addSharedTextField(QStringLiteral("twice"), {{0, {40, 500, 200, 20}}, {1, {40, 500, 200, 20}}}, QString());
    pdf.addTextField(0, QStringLiteral("notes"), {40, 300, 120, 80}, QString(), "/Ff 4096");
    pdf.addTextField(0, QStringLiteral("comb"), {40, 250, 200, 20}, QString(), "/Ff 16777216 /MaxLen 10");
    pdf.addTextField(0, QStringLiteral("right"), {40, 200, 200, 20}, QString(), "/Q 2 /MK << /BG [1 1 0] /BC [0] >>");
    pdf.addTextField(0, QStringLiteral("secret"), {40, 150, 200, 20}, QString(), "/Ff 8192");
    pdf.addTextField(0, QStringLiteral("foreign"), {40, 100, 200, 20}, QString());
    if (GetParam())
        addBulk(pdf);
    const QByteArray before = pdf.bytes();
    const auto document = PDFDocument::fromData(before);
    const auto set = [&](const char* name, const QString& value) {
        field(*document, QString::fromLatin1(name))->setWidgetStringValue(value);
    };
    set("name", QStringLiteral("Jürgen (new) \\ €"));
    set("twice", QStringLiteral("everywhere"));
    set("notes", QStringLiteral("a longer text that needs more than a line\nand a second paragraph"));
    set("comb", QStringLiteral("12345"));
    set("right", QStringLiteral("to the right"));
    set("secret", QStringLiteral("hidden"));
    set("foreign", QStringLiteral("Ωδή"));
    field(*document, QStringLiteral("agree"))->setButtonWidgetState(PDFWidgetCellState::on);
    field(*document, QStringLiteral("choice"), 0)->setButtonWidgetState(PDFWidgetCellState::off);
    field(*document, QStringLiteral("choice"), 1)->setButtonWidgetState(PDFWidgetCellState::on);

    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(file.startsWith(before), GetParam()) << "appended to a large file only";
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const auto reopened = PDFDocument::fromData(file);
    auto expected = values(*document);
    expected[QStringLiteral("twice")] = {QStringLiteral("everywhere"), QStringLiteral("everywhere")};
    EXPECT_EQ(values(*reopened), expected);

    const QString first = words(file, 1).join(QLatin1Char(' '));
    EXPECT_TRUE(first.contains(QStringLiteral("Jürgen (new) \\ €"))) << first.toStdString();
    EXPECT_FALSE(first.contains(QStringLiteral("old")));
    EXPECT_TRUE(first.contains(QStringLiteral("everywhere")));
    EXPECT_TRUE(first.contains(QStringLiteral("and a second")));
    for (const QString& line : words(file, 1))
        EXPECT_FALSE(line.contains(QStringLiteral("text that needs more than"))) << "it is wrapped";
    EXPECT_TRUE(first.contains(QString(6, QChar(0x2022)))) << "a dot for each character";
    EXPECT_FALSE(first.contains(QStringLiteral("hidden")));
    EXPECT_TRUE(words(file, 2).join(QLatin1Char(' ')).contains(QStringLiteral("everywhere")));
    for (const QString& line : words(file, 1))
        if (line.contains(QStringLiteral("to the right"))) {
            EXPECT_GT(line.indexOf(QStringLiteral("to the right")), 8);
        }
    // Shown through an embedded font, since the form's font hasn't these characters.
    EXPECT_TRUE(first.contains(QStringLiteral("Ωδή"))) << first.toStdString();
}

INSTANTIATE_TEST_SUITE_P(AppendOrRewrite, FillingTest, testing::Bool());

TEST(WriterFormsTest, WidgetsOnOneFieldGoOneByOne) {
    PdfFixture pdf;
    for (int i = 0; i < 3; ++i)
        pdf.addPage({});
    pdf.addSharedTextField(QStringLiteral("shared"), {{0, {0, 0, 90, 20}}, {1, {0, 0, 90, 20}}, {2, {0, 0, 90, 20}}},
                           QStringLiteral("value"));
    auto document = PDFDocument::fromData(pdf.bytes());
    for (int left = 2; left >= 0; --left) {
        document->page(left)->removeAnnotation(document->page(left)->annotations()[0]);
        const QByteArray file = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        document = PDFDocument::fromData(file);
        EXPECT_EQ(values(*document).value(QStringLiteral("shared")).size(), left);
        if (left == 0) {
            EXPECT_FALSE(PdfPrograms::unpacked(document->dataRepresentation()).contains("(shared)"));
        }
    }
}

TEST(WriterFormsTest, FieldsComeAlongWithTheirPages) {
    PdfFixture one;
    one.addPage({});
    one.addTextField(0, QStringLiteral("name"), {40, 700, 200, 20}, QStringLiteral("Ann"));
    PdfFixture two;
    two.addPage({});
    two.addPage({});
    two.addTextField(0, QStringLiteral("name"), {40, 700, 200, 20}, QStringLiteral("Bob"));
    two.addSharedTextField(QStringLiteral("both"), {{0, {40, 500, 200, 20}}, {1, {40, 500, 200, 20}}},
                           QStringLiteral("same"));
    const QByteArray parent = two.addObject("<< /T (address) /Kids [] >>");
    const QByteArray city = two.addTextField(0, QStringLiteral("city"), {40, 300, 200, 20}, QStringLiteral("Ulm"));
    two.setKey(city, "/Parent", parent);
    two.appendToArray(parent, "/Kids", city);
    two.removeFromArray(two.form(), "/Fields", city);
    two.appendToArray(two.form(), "/Fields", parent);

    const auto document = PDFDocument::fromData(one.bytes());
    const auto other = PDFDocument::fromData(two.bytes(PdfFixture::Style::objectStreams));
    for (int i = 0; i < 2; ++i)
        document->insert(other->page(i)->copy(), i + 1);
    document->insert(document->page(0)->copy(), 3); // a second copy of a page that is here already
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const auto reopened = PDFDocument::fromData(file);
    EXPECT_EQ(values(*reopened),
              (QMap<QString, QStringList>{{QStringLiteral("name"), {QStringLiteral("Ann")}},
                                          {QStringLiteral("name_2"), {QStringLiteral("Bob")}},
                                          {QStringLiteral("name_3"), {QStringLiteral("Ann")}},
                                          {QStringLiteral("address.city"), {QStringLiteral("Ulm")}},
                                          {QStringLiteral("both"), {QStringLiteral("same"), QStringLiteral("same")}}}));
    // The field that shows twice is one field.
    field(*reopened, QStringLiteral("both"), 0)->setWidgetStringValue(QStringLiteral("changed"));
    const auto changed = PDFDocument::fromData(reopened->dataRepresentation());
    EXPECT_EQ(values(*changed).value(QStringLiteral("both")),
              (QStringList{QStringLiteral("changed"), QStringLiteral("changed")}));
}
