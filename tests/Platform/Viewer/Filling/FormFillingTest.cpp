#include "FieldDrawing.h"
#include "PdfPrograms.h"
#include "ShownForm.h"

#include <QClipboard>
#include <QLineEdit>
#include <QScrollBar>
#include <QTextEdit>

#include <tuple>

namespace {

using Form = ShownForm<PDFView>;

class FormFilling : public testing::TestWithParam<std::tuple<int, double>> {};

} // namespace

TEST_P(FormFilling, everyKindTakesWhatIsClickedAndTypedAndIsInTheSavedFile) {
    const auto [rotation, scale] = GetParam();
    Form form(rotation, scale);
    QSignalSpy changes(&form.view, &PDFView::formFieldChanged);

    form.click(FormFixture::name);
    auto* const line = qobject_cast<QLineEdit*>(form.editor());
    ASSERT_NE(line, nullptr);
    EXPECT_TRUE(line->hasFocus());
    const QRectF place = form.onScreen(FormFixture::name);
    EXPECT_LE((QRectF(line->geometry()).center() - place.center()).manhattanLength(), 2);
    EXPECT_NEAR(line->width(), place.width(), 2);
    EXPECT_NEAR(line->font().pointSizeF() * line->logicalDpiY() / 72, 10 * scale, 0.01);
    form.type(QStringLiteral("Ada Lovelace"));
    EXPECT_EQ(form.value(FormFixture::name), QStringList(QString()));
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.editor(), nullptr);

    form.click(FormFixture::code);
    form.type(QStringLiteral("1234567"));
    form.key(Qt::Key_Enter);
    form.click(FormFixture::secret);
    ASSERT_NE(form.editor(), nullptr);
    form.type(QStringLiteral("xyzzy"));
    EXPECT_NE(qobject_cast<QLineEdit*>(form.editor())->displayText(), QStringLiteral("xyzzy"));
    form.click(FormFixture::notes); // commits what was open
    EXPECT_EQ(form.value(FormFixture::secret), QStringList(QStringLiteral("xyzzy")));
    form.type(QStringLiteral("one"));
    form.key(Qt::Key_Return);
    form.type(QStringLiteral("two"));
    form.click(FormFixture::agree);
    form.click(FormFixture::large);
    EXPECT_EQ(form.value(FormFixture::small), QStringList(QStringLiteral("large")));

    form.click(FormFixture::color);
    ASSERT_NE(form.choices(), nullptr);
    EXPECT_EQ(form.choices()->currentItem()->text(), QStringLiteral("Red"));
    form.key(Qt::Key_Down);
    form.key(Qt::Key_Return);
    form.click(FormFixture::city);
    form.type(QStringLiteral("Paris"));
    form.key(Qt::Key_Return);
    const QRectF list = form.onScreen(FormFixture::fruit);
    form.click(FormFixture::fruit);
    auto* const rows = qobject_cast<QListWidget*>(form.editor());
    ASSERT_NE(rows, nullptr) << list.width();
    const auto choose = [&](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(rows->viewport(), Qt::LeftButton, modifiers, rows->visualItemRect(rows->item(row)).center());
    };
    choose(0, Qt::NoModifier);
    choose(2, Qt::ControlModifier);
    form.key(Qt::Key_Return);

    EXPECT_EQ(changes.count(), 9);
    const QByteArray saved = form.document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    const auto reopened = PDFDocument::fromData(saved);
    const auto value = [&](const QRectF& rect) {
        const auto field = PDFFormField::of(reopened->page(0)->annotation(rect.center()));
        return field ? field->value().join(QLatin1Char('|')).toStdString() : "no field";
    };
    EXPECT_EQ(value(FormFixture::name), "Ada Lovelace");
    EXPECT_EQ(value(FormFixture::code), "12345");
    EXPECT_EQ(value(FormFixture::secret), "xyzzy");
    EXPECT_EQ(value(FormFixture::notes), "one\ntwo");
    EXPECT_EQ(value(FormFixture::agree), "Yes");
    EXPECT_EQ(value(FormFixture::small), "large");
    EXPECT_EQ(value(FormFixture::color), "green");
    EXPECT_EQ(value(FormFixture::city), "Paris");
    EXPECT_EQ(value(FormFixture::fruit), "apple|cherry");
    const QString text = PdfPrograms::text(saved, 1);
    for (const char* shown : {"Ada Lovelace", "Green", "Paris", "one", "two"})
        EXPECT_TRUE(text.contains(QLatin1String(shown))) << shown;
    EXPECT_FALSE(text.contains(QStringLiteral("xyzzy")));
}

INSTANTIATE_TEST_SUITE_P(turnsAndScales, FormFilling,
                         testing::Combine(testing::Values(0, 90), testing::Values(0.5, 2.0)));

TEST(FormTexts, neverBecomeLongerThanTheFieldAllowsWhateverIsPasted) {
    Form form;
    const auto paste = [&](const QRectF& rect, const QString& text) {
        form.click(rect);
        QApplication::clipboard()->setText(text);
        form.key(Qt::Key_V, Qt::ControlModifier);
    };
    paste(FormFixture::amount, QStringLiteral("123456789"));
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::amount), QStringList(QStringLiteral("123456")));

    paste(FormFixture::notes, QString(35, QLatin1Char('a')));
    form.key(Qt::Key_Home);
    form.key(Qt::Key_V, Qt::ControlModifier);
    form.type(QStringLiteral("zz"));
    auto* const lines = qobject_cast<QTextEdit*>(form.editor());
    ASSERT_NE(lines, nullptr);
    EXPECT_EQ(lines->toPlainText(), QString(40, QLatin1Char('a')));
    form.key(Qt::Key_Return); // no room for a line break either
    EXPECT_EQ(lines->toPlainText().size(), 40);
    form.key(Qt::Key_Z, Qt::ControlModifier); // what wasn't taken is no step
    EXPECT_EQ(lines->toPlainText().size(), 35);
    form.key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(form.editor(), nullptr);
    EXPECT_EQ(form.value(FormFixture::notes), QStringList(QString(35, QLatin1Char('a'))));
}

TEST(FormTexts, escapeRestoresAndWhatIsNotChangedIsNotCommitted) {
    Form form;
    QSignalSpy changes(&form.view, &PDFView::formFieldChanged);
    form.click(FormFixture::name);
    form.type(QStringLiteral("nobody"));
    EXPECT_TRUE(form.view.isFilling());
    form.key(Qt::Key_Escape);
    EXPECT_FALSE(form.view.isFilling());
    EXPECT_EQ(form.value(FormFixture::name), QStringList(QString()));
    form.click(FormFixture::fixed); // read-only
    EXPECT_EQ(form.editor(), nullptr);
    form.click(FormFixture::city);
    form.key(Qt::Key_Return);
    form.click(FormFixture::fruit); // the row under the pointer
    form.key(Qt::Key_Escape);
    EXPECT_EQ(form.value(FormFixture::fruit), QStringList());
    EXPECT_EQ(changes.count(), 0);
    EXPECT_FALSE(form.document->page(0)->isModified());
}

TEST(FormTexts, anEditorKeepsToItsFieldWhenThePageIsScrolledAndZoomed) {
    Form form;
    for (const QRectF& rect : {FormFixture::name, FormFixture::notes, FormFixture::fruit}) {
        form.view.setScaleFactor(1);
        form.click(rect);
        ASSERT_NE(form.editor(), nullptr);
        for (const double scale : {0.6, 1.7}) {
            form.view.setScaleFactor(scale);
            form.view.verticalScrollBar()->setValue(form.view.verticalScrollBar()->value() + 23);
            const QRectF place = form.onScreen(rect);
            EXPECT_NEAR(form.editor()->x(), place.x(), 1);
            EXPECT_NEAR(form.editor()->y(), place.y(), 1);
            EXPECT_NEAR(form.editor()->height(), place.height(), 2);
            EXPECT_NEAR(form.editor()->font().pointSizeF() * form.editor()->logicalDpiY() / 72, 10 * scale, 0.01);
        }
        form.key(Qt::Key_Escape);
    }
}

TEST(FormTexts, linesAreEditedAsLargeAndAsFarApartAsTheyWillStand) {
    for (const QByteArray& size : {QByteArray("11"), QByteArray("0")}) {
        PdfFixture pdf;
        pdf.addPage({});
        pdf.appendToArray(pdf.form(), "/Fields",
                          pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Widget /FT /Tx /Ff 4096 /F 4 /T (notes) "
                                               "/Rect [50 650 250 710] /DA (/Helv " +
                                                   size + " Tf 0 g) >>"));
        Form form(pdf.bytes(), 1.5);
        form.key(Qt::Key_Tab);
        auto* const editor = qobject_cast<QTextEdit*>(form.editor());
        ASSERT_NE(editor, nullptr);
        for (int i = 0; i < 7; ++i) {
            form.type(QStringLiteral("more"));
            form.key(Qt::Key_Return);
        }
        const double edited = editor->font().pointSizeF() * editor->logicalDpiY() / 72 / 1.5;
        QTextCursor place(editor->document());
        const double first = editor->cursorRect(place).top();
        place.movePosition(QTextCursor::NextBlock, QTextCursor::MoveAnchor, 3);
        const double apart = (editor->cursorRect(place).top() - first) / 3 / 1.5;
        form.key(Qt::Key_Return, Qt::ControlModifier);

        const auto look = FieldDrawing::of(form.document->page(0)->annotations().at(0)->values());
        ASSERT_TRUE(look && look->text && look->text->layout.lines.size() > 1U);
        const FieldText::Layout& stands = look->text->layout;
        EXPECT_EQ(size == "0", stands.size < 8);
        EXPECT_NEAR(edited, stands.size, 0.05);
        EXPECT_NEAR(apart, stands.lines[0].at.y() - stands.lines[1].at.y(), 0.7);
    }
}

TEST(FormTexts, characterCellsTakeTheCursorAndTheSelection) {
    Form form;
    form.click(FormFixture::code);
    auto* const line = qobject_cast<QLineEdit*>(form.editor());
    ASSERT_NE(line, nullptr);
    form.type(QStringLiteral("ABCD"));
    const auto cell = [&](double index) { return QPoint(int(line->width() / 5.0 * index), line->height() / 2); };
    QTest::mouseDClick(line, Qt::LeftButton, {}, cell(4.5));
    EXPECT_EQ(line->selectedText(), QStringLiteral("ABCD"));
    QTest::mouseClick(line, Qt::LeftButton, {}, cell(2.1));
    EXPECT_EQ(line->cursorPosition(), 2);
    QTest::mouseClick(line, Qt::LeftButton, Qt::ShiftModifier, cell(3.9));
    EXPECT_EQ(line->selectedText(), QStringLiteral("CD"));
    form.type(QStringLiteral("x"));
    form.key(Qt::Key_Return);
    EXPECT_EQ(form.value(FormFixture::code), QStringList(QStringLiteral("ABx")));
}

TEST(FormTexts, closingTheViewOrGoingToAnotherDocumentDropsAnOpenEditor) {
    const auto document = PDFDocument::fromData(FormFixture::bytes());
    for (const int way : {0, 1, 2}) {
        auto form = std::make_unique<Form>();
        const auto shown = form->document;
        form->click(FormFixture::name);
        form->type(QStringLiteral("half"));
        ASSERT_NE(form->editor(), nullptr);
        if (way == 1) {
            form->view.setDocument(document);
            EXPECT_EQ(form->editor(), nullptr);
        } else if (way == 2) {
            shown->insert(shown->removePage(0), 1);
            QCoreApplication::processEvents();
            EXPECT_NE(form->editor(), nullptr) << "the page is moved";
            const auto page = shown->removePage(1);
            QCoreApplication::processEvents();
            EXPECT_EQ(form->editor(), nullptr);
            shown->insert(page, 0);
        }
        form.reset();
        QCoreApplication::processEvents();
        EXPECT_FALSE(shown->page(0)->isModified()) << way;
    }
}
