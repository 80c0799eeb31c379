#include "PageOperations.h"

#include "EditorTest.h"
#include "FrozenCopies.h"
#include "PrintCopy.h"

namespace {

class PageOperationsTest : public EditorTest {
protected:
    /// A document of pages with a letter each.
    static std::shared_ptr<PDFDocument> pages(const QString& letters) {
        return PDFDocument::fromData(pagesOf(letters.split(QString(), Qt::SkipEmptyParts)));
    }
    static QString letters(const PDFDocument& document) { return texts(document).remove(u'|'); }
};

} // namespace

TEST_F(PageOperationsTest, anEditIsToldAndUndoneAndRedoneAnyNumberOfTimes) {
    using namespace PageOperations;
    const QString before = QStringLiteral("abcd");
    const auto source = pages(QStringLiteral("xy"));
    using Edit = std::function<void(UndoManager*)>;
    const auto moveAll = [this](const PageIndices& indices, int gap) -> Edit {
        return [=, this](auto* undo) { movePages(m_document, indices, gap, undo); };
    };
    const auto remove = [this](const PageIndices& indices) -> Edit {
        return [=, this](auto* undo) { deletePages(m_document, indices, undo); };
    };
    const struct {
        Edit edit;
        QString result;
        int steps = 1; ///< each of which is told
    } cases[] = {
        {[this](auto* undo) { movePage(m_document, 0, 2, undo); }, QStringLiteral("bcad")},
        {[this](auto* undo) { movePage(m_document, 3, 0, undo); }, QStringLiteral("dabc")},
        {[this](auto* undo) { movePage(m_document, 1, 99, undo); }, QStringLiteral("acdb")},
        {[this](auto* undo) { movePage(m_document, 2, -7, undo); }, QStringLiteral("cabd")},
        {[this](auto* undo) { movePage(m_document, 1, 1, undo); }, before, 0},
        {[this](auto* undo) { movePage(m_document, 4, 0, undo); }, before, 0},
        {moveAll({0, 3}, 2), QStringLiteral("badc"), 2},
        {moveAll({0, 1, 3}, 4), QStringLiteral("cabd"), 2},
        {moveAll({2, 3}, 0), QStringLiteral("cdab"), 2},
        {moveAll({1, 2}, 2), before, 0},
        {remove({0, 3}), QStringLiteral("bc")},
        {remove({0, 1, 2, 3}), QString()},
        {remove({-1, 4}), before, 0},
        {[&](auto* undo) { merge(m_document, *source, 1, undo); }, QStringLiteral("axybcd")},
        {[&](auto* undo) { merge(m_document, *source, 99, undo); }, QStringLiteral("abcdxy")},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.result.toStdString());
        m_document.setPdfDocument(pages(before));
        undoManager().removeAllActions();
        undoManager().markSaved();
        m_told = 0;
        edit([&] { each.edit(&undoManager()); }, each.steps > 0);
        EXPECT_EQ(m_told, each.steps);
        expectReversible([this] { return letters(pdf()); }, before, each.result);
        EXPECT_EQ(m_told, each.steps * 7);
        each.edit(nullptr);
    }
}

TEST_F(PageOperationsTest, newDocumentsAreMadeOfCopies) {
    const auto first = pages(QStringLiteral("abcd"));
    const auto second = pages(QStringLiteral("xy"));
    const auto extracted = PageOperations::extractPages({3, 1}, *first);
    const auto merged = PageOperations::mergeFiles({second, first, second});
    EXPECT_EQ(letters(*extracted), QStringLiteral("bd"));
    EXPECT_EQ(PageOperations::mergeFiles({})->pageCount(), 0);
    EXPECT_EQ(letters(*first), QStringLiteral("abcd"));
    EXPECT_NE(extracted->page(0), first->page(1));

    // Files are written when all of them are complete, or none.
    FrozenCopies copies;
    copies.add(*merged, path("copy.pdf"));
    merged->removePage(0);
    EXPECT_FALSE(copies.write([] { return false; }));
    EXPECT_EQ(names(), "");
    EXPECT_TRUE(copies.write([] { return true; }));
    EXPECT_EQ(PdfPrograms::text(contentOf("copy.pdf")).simplified().remove(u' '), QStringLiteral("xyabcdxy"));
}

TEST_F(PageOperationsTest, aCopyToPrintHoldsTheChosenPagesInTheirOrderAndTheFieldsOfForms) {
    PdfFixture fixture;
    for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")})
        fixture.addPage({word});
    fixture.addAnnotation(1, "<< /Type /Annot /Subtype /Highlight /Rect [70 700 200 730] /C [1 1 0] /QuadPoints "
                             "[70 730 200 730 70 700 200 700] >>");
    fixture.addTextField(1, QStringLiteral("name"), {72, 500, 200, 24}, QStringLiteral("Ada"));
    const std::pair<std::vector<int>, const char*> cases[] = {{{0, 1, 2}, "First Second Ada Third"},
                                                              {{2, 0}, "Third First"},
                                                              {{1}, "Second Ada"},
                                                              {{1, 7, -1}, "Second Ada"}};
    for (const QByteArray& file :
         {fixture.bytes(), fixture.encrypted("secret", "owner", PdfFixture::Encryption::aes256)}) {
        open(file);
        ASSERT_TRUE(!pdf().isLocked() || pdf().unlock(QStringLiteral("secret")));
        pdf().page(1)->addAnnotation(
            std::make_shared<PDFAnnotation>(QRectF(100, 100, 50, 20), PDFAnnotationSubtype::square));
        for (const auto& [pages, expected] : cases)
            for (const bool hasAnnotations : {true, false}) {
                const QByteArray copy = PrintCopy::of(pdf(), pages, hasAnnotations).bytes();
                EXPECT_EQ(PdfPrograms::text(copy).simplified().toStdString(), expected);
                EXPECT_EQ(PdfPrograms::complaints(copy), "");
                const QByteArray unpacked = PdfPrograms::unpacked(copy);
                for (const char* kind : {"/Highlight", "/Square"})
                    EXPECT_EQ(unpacked.contains(kind), hasAnnotations && pages.size() != 2) << kind;
            }
        EXPECT_EQ(pdf().pageCount(), 3) << "the document keeps its pages";
    }
}
