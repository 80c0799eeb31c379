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
    for (const char* part : {"/AcroForm", "/Helv", "/ZapfDingbats", "/Yes", "/Off", "/CA (4)", "/DA (/Helv 0 Tf 0 g)"})
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

TEST(WriterFormsTest, WidgetsOnOneFieldGoOneByOne) {
    PdfFixture pdf;
    pdf.addPages(3);
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
    two.addPages(2);
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
