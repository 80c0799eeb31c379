#include "PrintCopy.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

namespace {

/// Three pages that say "First", "Second" and "Third"; a highlight and a filled field on the second.
void fill(PdfFixture& fixture) {
    for (const QString& word : {QStringLiteral("First"), QStringLiteral("Second"), QStringLiteral("Third")})
        fixture.addPage({word});
    fixture.addAnnotation(1, "<< /Type /Annot /Subtype /Highlight /Rect [70 700 200 730] /C [1 1 0] /QuadPoints "
                             "[70 730 200 730 70 700 200 700] >>");
    fixture.addTextField(1, QStringLiteral("name"), {72, 500, 200, 24}, QStringLiteral("Ada"));
}

/// The words of the file, those of fields included, page after page.
std::string words(const QByteArray& pdf) {
    return PdfPrograms::text(pdf).simplified().toStdString();
}

TEST(PrintCopy, HoldsTheChosenPagesInTheirOrderAndTheFieldsOfForms) {
    PdfFixture fixture;
    fill(fixture);
    const auto open = PDFDocument::fromData(fixture.bytes());
    const auto locked = PDFDocument::fromData(fixture.encrypted("secret", "owner", PdfFixture::Encryption::aes256));
    ASSERT_TRUE(locked->unlock(QStringLiteral("secret")));
    const std::pair<std::vector<int>, const char*> cases[] = {{{0, 1, 2}, "First Second Ada Third"},
                                                              {{2, 0}, "Third First"},
                                                              {{1}, "Second Ada"},
                                                              {{1, 7, -1}, "Second Ada"}};
    for (const auto& document : {open, locked}) {
        const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 100, 50, 20), PDFAnnotationSubtype::square);
        document->page(1)->addAnnotation(note);
        for (const auto& [pages, expected] : cases)
            for (const bool hasAnnotations : {true, false}) {
                const QByteArray copy = PrintCopy::of(*document, pages, hasAnnotations).bytes();
                EXPECT_EQ(words(copy), expected);
                EXPECT_EQ(PdfPrograms::complaints(copy), "");
                const QByteArray unpacked = PdfPrograms::unpacked(copy);
                const bool isSecond = pages.size() != 2;
                EXPECT_EQ(unpacked.contains("/Highlight"), hasAnnotations && isSecond);
                EXPECT_EQ(unpacked.contains("/Square"), hasAnnotations && isSecond);
            }
        EXPECT_EQ(document->pageCount(), 3) << "the document keeps its pages";
    }
}

} // namespace
