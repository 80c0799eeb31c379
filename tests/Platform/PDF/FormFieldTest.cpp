#include "PDFFormField.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

using Kind = PDFFormField::Kind;
using Alignment = PDFFormField::Alignment;
using Document = std::shared_ptr<PDFDocument>;

/// Adds a field with one widget in one dictionary.
QByteArray addField(PdfFixture& pdf, int page, const QByteArray& name, const QByteArray& keys,
                    const QRectF& rect = {20, 20, 100, 20}) {
    QByteArray field = pdf.addAnnotation(page, "<< /Type /Annot /Subtype /Widget /F 4 /T (" + name + ") /Rect " +
                                                   PdfFixture::rectArray(rect) + ' ' + keys + " >>");
    pdf.appendToArray(pdf.form(), "/Fields", field);
    return field;
}

std::shared_ptr<PDFAnnotation> widget(const PDFPage& page, const QString& name, int which = 0) {
    for (const auto& annotation : page.annotations())
        if (annotation->fieldName() == name && which-- == 0)
            return annotation;
    ADD_FAILURE() << "no widget of " << name.toStdString();
    return nullptr;
}

PDFFormField field(const Document& document, const char* name, int page = 0, int which = 0) {
    return PDFFormField::of(widget(*document->page(page), QString::fromLatin1(name), which)).value();
}

QStringList names(const std::vector<std::shared_ptr<PDFAnnotation>>& widgets) {
    QStringList all;
    for (const auto& each : widgets)
        all += each->fieldName();
    return all;
}

struct KindCase {
    const char* keys;
    Kind kind;
    QStringList value;
    bool fillable = true;
};

} // namespace

TEST(FormField, KindsAndValues) {
    const KindCase cases[] = {
        {"/FT /Tx /V (two\\rlines) /Ff 4096", Kind::text, {QStringLiteral("two\nlines")}},
        {"/FT /Tx", Kind::text, {QString()}},
        {"/FT /Tx /Ff 1 /V (fixed)", Kind::text, {QStringLiteral("fixed")}, false},

        {"/FT /Btn /V /Off", Kind::checkBox, {QStringLiteral("Off")}},
        {"/FT /Btn /V /On /AS /On", Kind::checkBox, {QStringLiteral("On")}},
        {"/FT /Btn /Ff 32768", Kind::radioButtons, {QStringLiteral("Off")}},
        {"/FT /Btn /Ff 65536", Kind::pushButton, {}, false},
        {"/FT /Ch /Ff 131072 /V (b) /Opt [(a) (b)]", Kind::comboBox, {QStringLiteral("b")}},
        {"/FT /Ch /V [(a) (b)] /Opt [(a) (b)]", Kind::listBox, {QStringLiteral("a"), QStringLiteral("b")}},
        {"/FT /Ch /I [1] /Opt [(a) (b)]", Kind::listBox, {QStringLiteral("b")}},
        {"/FT /Sig", Kind::signature, {}, false},
    };
    PdfFixture pdf;
    pdf.addPage({});
    for (const KindCase& each : cases)
        addField(pdf, 0, QByteArray("f") + QByteArray::number(&each - cases), each.keys);
    pdf.addAnnotation(0, "<< /Subtype /Widget /T (typeless) /Rect [0 0 9 9] >>");
    pdf.addAnnotation(0, "<< /Subtype /Square /Rect [0 0 9 9] >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    for (const KindCase& each : cases) {
        SCOPED_TRACE(each.keys);
        const PDFFormField read = field(document, (QByteArray("f") + QByteArray::number(&each - cases)).constData());
        EXPECT_EQ(read.kind(), each.kind);
        EXPECT_EQ(read.value(), each.value);
        EXPECT_EQ(read.isFillable(), each.fillable);
    }
    const auto& all = document->page(0)->annotations();
    EXPECT_FALSE(PDFFormField::of(all[all.size() - 1]));
    EXPECT_FALSE(PDFFormField::of(all[all.size() - 2]));
    EXPECT_FALSE(PDFFormField::of(nullptr));
}

TEST(FormField, KeysAreInherited) {
    PdfFixture pdf;
    pdf.addPage({});
    pdf.setKey(pdf.form(), "/Q", "2");
    pdf.setKey(pdf.form(), "/DA", "(/Helv 9 Tf 1 0 0 rg)");
    const QByteArray parent = pdf.addObject("<< /T (group) /FT /Tx /Ff 16777218 /MaxLen 7 /V (above) /Kids [] >>");
    pdf.appendToArray(pdf.form(), "/Fields", parent);
    pdf.appendToArray(parent, "/Kids",
                      pdf.addAnnotation(0, "<< /Subtype /Widget /T (one) /Parent " + parent + " /Rect [0 0 9 9] >>"));
    pdf.appendToArray(
        parent, "/Kids",
        pdf.addAnnotation(0, "<< /Subtype /Widget /T (two) /TU (The second) /Parent " + parent +
                                 " /Q 1 /MaxLen 3 /Ff 4096 /DA (/Helv 20 Tf) /V (own) /Rect [0 0 9 9] >>"));
    pdf.setKey(pdf.form(), "/DR", "<< /Font << /F7 << /BaseFont /ABCDEF+Times-Bold >> >> >>");
    addField(pdf, 0, "named", "/FT /Tx /DA (/F7 11 Tf)");
    addField(pdf, 0, "pick", "/FT /Ch /Ff 393216 /Opt [[(x) (The X)] [(y)] (z) 5]");
    addField(pdf, 0, "many", "/FT /Ch /Ff 2097152");
    const QByteArray looks = pdf.addStream("<< /BBox [0 0 9 9] >>", "");
    addField(pdf, 0, "radio", "/FT /Btn /Ff 49152 /AP << /N << /Off " + looks + " /Red " + looks + " >> >>");
    const auto document = PDFDocument::fromData(pdf.bytes());

    const PDFFormField one = field(document, "group.one");
    EXPECT_TRUE(one.isRequired());
    EXPECT_TRUE(one.isComb());
    EXPECT_EQ(one.maximumLength(), 7);
    EXPECT_EQ(one.alignment(), Alignment::right);
    EXPECT_EQ(one.value(), QStringList{QStringLiteral("above")});
    EXPECT_EQ(one.userName(), QStringLiteral("group.one"));
    EXPECT_DOUBLE_EQ(one.widget()->font()->pointSizeF(), 9);
    EXPECT_EQ(one.widget()->fontColor(), QColor(Qt::red));
    const PDFFormField two = field(document, "group.two");
    EXPECT_TRUE(two.isMultiline());
    EXPECT_FALSE(two.isComb() || two.isRequired());
    EXPECT_EQ(two.maximumLength(), 3);
    EXPECT_EQ(two.alignment(), Alignment::center);
    EXPECT_EQ(two.value(), QStringList{QStringLiteral("own")});
    EXPECT_EQ(two.userName(), QStringLiteral("The second"));
    EXPECT_DOUBLE_EQ(two.widget()->font()->pointSizeF(), 20);

    EXPECT_TRUE(field(document, "named").widget()->font()->bold()) << "the form's resources tell what F7 is";
    EXPECT_EQ(field(document, "named").widget()->font()->family(), QStringLiteral("Times"));

    const PDFFormField pick = field(document, "pick");
    EXPECT_TRUE(pick.isEditable());
    EXPECT_EQ(pick.choices(), (std::vector<PDFFormField::Choice>{{QStringLiteral("x"), QStringLiteral("The X")},
                                                                 {QStringLiteral("y"), QStringLiteral("y")},
                                                                 {QStringLiteral("z"), QStringLiteral("z")},
                                                                 {QString(), QString()}}));
    EXPECT_TRUE(field(document, "many").allowsMultipleSelection());
    EXPECT_EQ(field(document, "radio").onState(), QStringLiteral("Red"));
    EXPECT_TRUE(field(document, "radio").noToggleToOff());
}

TEST(FormField, TabOrder) {
    for (const auto& [tabs, expected] :
         {std::pair("", "a b c d"), {"/R", "a b c d"}, {"/C", "a c b d"}, {"/S", "d b c a"}, {"/W", "d b c a"}}) {
        PdfFixture pdf;
        pdf.addPage({});
        addField(pdf, 0, "d", "/FT /Tx", {200, 600, 100, 20});
        addField(pdf, 0, "b", "/FT /Tx", {200, 703, 100, 14}); // a little off its row
        addField(pdf, 0, "c", "/FT /Btn", {21, 600, 20, 20});
        addField(pdf, 0, "a", "/FT /Ch", {20, 700, 100, 20});
        addField(pdf, 0, "fixed", "/FT /Tx /Ff 1", {20, 500, 100, 20});
        addField(pdf, 0, "push", "/FT /Btn /Ff 65536", {20, 400, 100, 20});
        if (*tabs)
            pdf.setPageKey(0, "/Tabs", tabs);
        const auto document = PDFDocument::fromData(pdf.bytes());
        const QStringList order = names(PDFFormField::fillableWidgets(*document->page(0)));
        EXPECT_EQ(order.join(QLatin1Char(' ')).toStdString(), expected) << tabs;
    }
    PdfFixture turned;
    turned.addPage({});
    turned.setPageKey(0, "/Rotate", "90");
    addField(turned, 0, "second", "/FT /Tx", {20, 700, 100, 20});
    addField(turned, 0, "first", "/FT /Tx", {20, 100, 100, 20});
    const auto document = PDFDocument::fromData(turned.bytes());
    EXPECT_EQ(names(PDFFormField::fillableWidgets(*document->page(0))).first(), QStringLiteral("first"))
        << "rows are those of the page as it is shown";
}

TEST(FormField, AllWidgetsOfAFieldShareItsValue) {
    PdfFixture pdf;
    pdf.addPages(40);
    const QByteArray shared =
        pdf.addSharedTextField(QStringLiteral("shared"), {{0, {0, 0, 90, 20}}, {30, {0, 0, 90, 20}}}, QString());
    // A widget that doesn't tell its page, and a second field of the same name.
    const QByteArray lost = pdf.addAnnotation(20, "<< /Subtype /Widget /Parent " + shared + " /Rect [0 0 90 20] >>");
    pdf.setKey(lost, "/P", "null");
    pdf.appendToArray(shared, "/Kids", lost);
    addField(pdf, 10, "shared", "/FT /Tx");
    pdf.addTextField(1, QStringLiteral("other"), {0, 0, 90, 20}, QStringLiteral("apart"));
    const auto document = PDFDocument::fromData(pdf.bytes());
    PDFFormField first = field(document, "shared");
    EXPECT_TRUE(first.setValue({QStringLiteral("all")}));
    EXPECT_EQ(document->knownPages().size(), 4U) << "pages without the field aren't read";
    EXPECT_EQ(first.widgets().size(), 4U);
    for (const int page : {0, 10, 20, 30})
        EXPECT_EQ(field(document, "shared", page).value(), QStringList{QStringLiteral("all")}) << page;
    EXPECT_FALSE(first.setValue({QStringLiteral("all")}));

    // A page that stands there again has a field of its own when it is saved, and so it fills apart.
    document->insert(document->page(0)->copy(), 40);
    EXPECT_TRUE(field(document, "shared", 40).setValue({QStringLiteral("copy")}));
    EXPECT_EQ(first.value(), QStringList{QStringLiteral("all")});
    const auto again = PDFDocument::fromData(document->dataRepresentation());
    EXPECT_EQ(field(again, "shared", 30).value(), QStringList{QStringLiteral("all")});
    EXPECT_EQ(field(again, "shared_2", 40).value(), QStringList{QStringLiteral("copy")});

    // Fields that were placed here.
    for (const int page : {2, 3}) {
        auto placed = std::make_shared<PDFAnnotation>(QRectF(0, 0, 90, 20), PDFAnnotationSubtype::widget);
        placed->setWidgetFieldType(PDFWidgetFieldType::text);
        placed->setFieldName(QStringLiteral("other"));
        document->page(page)->addAnnotation(placed);
    }
    EXPECT_TRUE(field(document, "other", 3).setValue({QStringLiteral("new")}));
    EXPECT_EQ(field(document, "other", 2).value(), QStringList{QStringLiteral("new")});
    EXPECT_EQ(field(document, "other", 1).value(), QStringList{QStringLiteral("apart")}) << "a field of the file";
}

TEST(FormField, ButtonsComeOnTogetherOrInTurn) {
    using Places = std::vector<PdfFixture::RadioButton>;
    const Places places{{0, {0, 0, 9, 9}, "A"}, {0, {20, 0, 9, 9}, "B"}, {1, {0, 0, 9, 9}, "B"}};
    struct Case {
        int flags;
        int asked;
        const char* state;
        QString on; // which buttons are on then
    };
    const Case cases[] = {
        {1 << 15, 1, "A", QStringLiteral("100")},           {1 << 15, 1, "B", QStringLiteral("010")},
        {1 << 15, 2, "B", QStringLiteral("001")},           {1 << 15, 0, "B", QStringLiteral("010")},
        {1 << 15, 0, "Off", QStringLiteral("000")},         {1 << 15, 0, "C", QStringLiteral("100")},
        {1 << 15 | 1 << 25, 2, "B", QStringLiteral("011")}, {0, 1, "B", QStringLiteral("011")},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(std::to_string(each.flags) + " " + each.state + " at " + std::to_string(each.asked));
        PdfFixture pdf;
        pdf.addPages(2);
        const QByteArray group = pdf.addRadioGroup(QStringLiteral("g"), places, "A");
        pdf.setKey(group, "/Ff", QByteArray::number(each.flags));
        const auto document = PDFDocument::fromData(pdf.bytes());
        const auto shown = [](const Document& of) {
            QString all;
            for (const PDFFormField& button : {field(of, "g", 0, 0), field(of, "g", 0, 1), field(of, "g", 1)})
                all += button.widget()->buttonWidgetState() == PDFWidgetCellState::on ? QLatin1Char('1')
                                                                                      : QLatin1Char('0');
            return all;
        };
        PDFFormField asked = each.asked == 2 ? field(document, "g", 1) : field(document, "g", 0, each.asked);
        const bool isKnown = each.state[0] != 'C';
        EXPECT_EQ(asked.setValue({QString::fromLatin1(each.state)}), isKnown && each.on != QLatin1String("100"));
        EXPECT_EQ(shown(document), each.on);
        const QStringList value{isKnown ? QString::fromLatin1(each.state) : QStringLiteral("A")};
        EXPECT_EQ(field(document, "g", 1).value(), value) << "also where nothing changed to see";
        const auto again = PDFDocument::fromData(document->dataRepresentation());
        EXPECT_EQ(shown(again), each.on);
        EXPECT_EQ(field(again, "g", 1).value(), value);
    }
}

TEST(FormField, TakesOnlyWhatItCanHold) {
    PdfFixture pdf;
    pdf.addPage({});
    addField(pdf, 0, "short", "/FT /Tx /MaxLen 4 /V (longer than that)");
    addField(pdf, 0, "line", "/FT /Tx");
    addField(pdf, 0, "combo", "/FT /Ch /Ff 131072 /Opt [[(a) (Apple)] (b)] /V (gone)");
    addField(pdf, 0, "edit", "/FT /Ch /Ff 393216 /Opt [(a) (b)]");
    addField(pdf, 0, "list", "/FT /Ch /Opt [(a) (b)]");
    addField(pdf, 0, "multi", "/FT /Ch /Ff 2097152 /Opt [(a) (b) (c)]");
    addField(pdf, 0, "check", "/FT /Btn");
    addField(pdf, 0, "sig", "/FT /Sig");
    struct Case {
        const char* name;
        QStringList asked;
        std::optional<QStringList> held; // none: refused
    };
    const auto text = [](const char* words) { return QString::fromUtf8(words); };
    const Case cases[] = {
        {"short", {text("abcdef")}, QStringList{text("abcd")}},
        {"short", {text("abc\U0001F600")}, QStringList{text("abc")}},
        {"short", {text("longer than that")}, QStringList{text("longer than that")}}, // as it was
        {"line", {text("a\nb")}, QStringList{text("a b")}},
        {"line", {text("a"), text("b")}, std::nullopt},
        {"combo", {text("Apple")}, std::nullopt}, // a label
        {"combo", {text("a")}, QStringList{text("a")}},
        {"combo", {}, QStringList{}},
        {"combo", {text("gone")}, QStringList{text("gone")}},
        {"edit", {text("own words")}, QStringList{text("own words")}},
        {"edit", {QString()}, QStringList{}},
        {"list", {text("a"), text("b")}, std::nullopt},
        {"list", {text("b")}, QStringList{text("b")}},
        {"multi", {text("c"), text("a")}, QStringList{text("c"), text("a")}},
        {"multi", {text("c"), text("d")}, std::nullopt},
        {"check", {text("On")}, std::nullopt},
        {"check", {text("Yes")}, QStringList{text("Yes")}},
        {"check", {}, QStringList{text("Off")}},
        {"sig", {text("me")}, std::nullopt},
    };
    const auto document = PDFDocument::fromData(pdf.bytes());
    for (const Case& each : cases) {
        SCOPED_TRACE(std::string(each.name) + ": " + each.asked.join(QLatin1Char('|')).toStdString());
        PDFFormField asked = field(document, each.name);
        const QStringList before = asked.value();
        EXPECT_EQ(asked.setValue(each.asked), each.held.has_value());
        EXPECT_EQ(asked.value(), each.held.value_or(before));
    }
}

TEST(FormField, TheFormerValueBringsEverythingBack) {
    PdfFixture pdf;
    pdf.addPages(2);
    pdf.addTextField(0, QStringLiteral("text"), {20, 20, 90, 20}, QStringLiteral("old"), "/M (D:20200101000000Z)");
    pdf.addSharedTextField(QStringLiteral("shared"), {{0, {20, 60, 90, 20}}, {1, {20, 60, 90, 20}}}, QString());
    pdf.addCheckBox(0, QStringLiteral("check"), {20, 100, 20, 20}, false);
    pdf.addRadioGroup(QStringLiteral("radio"), {{0, {20, 140, 20, 20}, "A"}, {1, {20, 140, 20, 20}, "B"}}, "A");
    addField(pdf, 0, "list", "/FT /Ch /Ff 2097152 /Opt [(a) (b)] /V [(a) (b)]");
    const QByteArray bytes = pdf.bytes();
    const auto document = PDFDocument::fromData(bytes);
    const QImage before = document->page(0)->thumbnail(QSize(400, 400), PDFDisplayBox::cropBox);
    std::vector<std::pair<PDFFormField, QStringList>> done;
    for (const auto& [name, value] :
         {std::pair("text", "new"), {"shared", "new"}, {"check", "Yes"}, {"radio", "B"}, {"list", "b"}}) {
        PDFFormField each = field(document, name);
        done.emplace_back(each, each.value());
        EXPECT_TRUE(each.setValue({QString::fromLatin1(value)}));
        EXPECT_TRUE(each.widget()->isModified()) << name;
    }
    EXPECT_TRUE(document->page(1)->isModified());
    EXPECT_NE(document->page(0)->thumbnail(QSize(400, 400), PDFDisplayBox::cropBox), before);
    for (auto step = done.rbegin(); step != done.rend(); ++step)
        EXPECT_TRUE(step->first.setValue(step->second)) << step->first.name().toStdString();
    EXPECT_FALSE(document->page(0)->isModified());
    EXPECT_FALSE(document->page(1)->isModified());
    EXPECT_EQ(document->page(0)->thumbnail(QSize(400, 400), PDFDisplayBox::cropBox), before);
    EXPECT_EQ(document->dataRepresentation(), bytes);

    // What was changed otherwise stays changed.
    PDFFormField moved = field(document, "text");
    EXPECT_TRUE(moved.setValue({QStringLiteral("new")}));
    moved.widget()->setBounds({30, 30, 90, 20});
    EXPECT_TRUE(moved.setValue({QStringLiteral("old")}));
    EXPECT_TRUE(moved.widget()->isModified());
}

TEST(FormField, HostileForms) {
    const QByteArray many(2'000'000, 'x');
    const auto build = [&](int which) {
        PdfFixture pdf;
        pdf.addPage({});
        QByteArray parent = pdf.reserveObject();
        const QByteArray widget =
            pdf.addAnnotation(0, "<< /Subtype /Widget /F 4 /Rect [20 20 90 90] /Parent " + parent + " >>");
        QByteArray keys = "/T (f) /FT /Tx /Kids [" + widget + ']';
        switch (which) {
        case 0: // a field that is among its own parents and kids
            keys =
                "/T (f) /FT /Ch /Opt [(a)] /Parent " + widget + " /Kids [" + parent + ' ' + widget + ' ' + parent + ']';
            pdf.setKey(widget, "/Kids", '[' + parent + ' ' + widget + ']');
            break;
        case 1:   // thousands of widgets with long values to inherit,
        case 7: { // and with all of them to be broken into lines of a size that is to be found
            const bool isWrapped = which == 7;
            keys = "/T (" + many.left(100'000) + ") /TU (" + many + ") /FT /Tx ";
            keys += isWrapped ? "/Ff 4096 /DA (/Helv 0 Tf) /V (" + QByteArray("ab ").repeated(700'000) + ") /Kids ["
                              : "/V (" + many + ") /Kids [";
            for (int i = 0; i < 3000; ++i)
                keys += pdf.addAnnotation(0, "<< /Subtype /Widget /F 4 /Rect [20 20 90 90] /Parent " + parent + " >>") +
                        ' ';
            keys += widget + ']';
            break;
        }
        case 2: // wrong types throughout
            keys = "/T 5 /TU [] /FT /Ch /Ff (x) /MaxLen /No /Q << >> /V << >> /Opt << >> /TI (y) /I 8 /DA 7 /Kids (k)";
            pdf.setKey(widget, "/MK", "[1 2]");
            pdf.setKey(widget, "/AP", "<< /N 7 >>");
            break;
        case 3: // options that go round in a circle
            keys = "/T (f) /FT /Ch /Ff 2097152 /TI -5 /I [-1 99999999999 (x)] /Opt [[] [[]] " + widget + ' ' + parent +
                   " null [(a) " + widget + "]] /Kids [" + widget + ']';
            break;
        case 4: // a comb with more cells than its box has points, and a turn without end
            keys = "/T (f) /FT /Tx /Ff 16777216 /MaxLen 2147483647 /V (abc) /Kids [" + widget + ']';
            pdf.setKey(widget, "/MK", "<< /R 2147483647 /BC [0] >>");
            pdf.setKey(widget, "/BS", "<< /W 99999 /S /B >>");
            break;
        case 5: // many lines in no room, of a size to be found
            keys = "/T (f) /FT /Tx /Ff 4096 /DA (/Helv 0 Tf) /V (" + QByteArray("a \\r").repeated(500) + ") /Kids [" +
                   widget + ']';
            break;
        default: // states that look like themselves
            keys = "/T (f) /FT /Btn /V /Odd /Kids [" + widget + ']';
            pdf.setKey(widget, "/AP", "<< /N << /On " + widget + " /Odd 4 >> >>");
            pdf.setKey(widget, "/AS", "/Elsewhere");
        }
        pdf.fillObject(parent, "<< " + keys + " >>");
        pdf.appendToArray(pdf.form(), "/Fields", parent);
        pdf.appendToArray(pdf.form(), "/Fields", widget);
        pdf.appendToArray(pdf.form(), "/Fields", pdf.form());
        return pdf.bytes();
    };
    for (int which = 0; which <= 7; ++which) {
        SCOPED_TRACE(which);
        const auto document = PDFDocument::fromData(build(which));
        EXPECT_FALSE(document->page(0)->thumbnail(QSize(100, 100), PDFDisplayBox::cropBox).isNull());
        (void)PDFFormField::fillableWidgets(*document->page(0));
        const auto all = document->page(0)->annotations();
        ASSERT_FALSE(all.empty());
        auto read = PDFFormField::of(all.front());
        if (!read)
            continue;
        EXPECT_LE(read->name().size(), 4000);
        EXPECT_LE(read->choices().size(), 10000U);
        for (const QStringList& value :
             {QStringList{QStringLiteral("a")}, QStringList{QStringLiteral("On")}, QStringList()})
            (void)read->setValue(value);
        EXPECT_FALSE(document->page(0)->thumbnail(QSize(100, 100), PDFDisplayBox::cropBox).isNull());
        EXPECT_EQ(PDFDocument::fromData(document->dataRepresentation())->pageCount(), 1);
    }
}
