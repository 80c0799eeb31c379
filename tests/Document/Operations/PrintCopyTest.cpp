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

TEST(PrintCopy, HoldsTheChosenPagesInTheirOrder) {
    PdfFixture fixture;
    fill(fixture);
    const auto document = PDFDocument::fromData(fixture.bytes());
    const struct {
        std::vector<int> pages;
        const char* words;
    } cases[] = {{{0, 1, 2}, "First Second Ada Third"},
                 {{2, 0}, "Third First"},
                 {{1}, "Second Ada"},
                 {{1, 7, -1}, "Second Ada"}};
    for (const auto& each : cases) {
        const QByteArray copy = PrintCopy::of(*document, each.pages, true).bytes();
        EXPECT_EQ(words(copy), each.words);
        EXPECT_EQ(PdfPrograms::complaints(copy), "");
    }
    EXPECT_EQ(document->pageCount(), 3) << "the document keeps its pages";
}

TEST(PrintCopy, WithoutAnnotationsKeepsTheFieldsOfForms) {
    PdfFixture fixture;
    fill(fixture);
    const auto document = PDFDocument::fromData(fixture.bytes());
    const auto note = std::make_shared<PDFAnnotation>(QRectF(100, 100, 50, 20), PDFAnnotationSubtype::square);
    document->page(0)->addAnnotation(note);
    for (const std::vector<int>& pages : {std::vector{0, 1, 2}, std::vector{0, 1}}) {
        const QByteArray with = PdfPrograms::unpacked(PrintCopy::of(*document, pages, true).bytes());
        EXPECT_TRUE(with.contains("/Highlight") && with.contains("/Square"));
        const QByteArray copy = PrintCopy::of(*document, pages, false).bytes();
        const QByteArray without = PdfPrograms::unpacked(copy);
        EXPECT_FALSE(without.contains("/Highlight") || without.contains("/Square"));
        EXPECT_TRUE(words(copy).find("Ada") != std::string::npos);
        EXPECT_EQ(PdfPrograms::complaints(copy), "");
    }
}

TEST(PrintCopy, AProtectedDocumentGoesToThePrinterOpen) {
    PdfFixture fixture;
    fill(fixture);
    const auto document = PDFDocument::fromData(fixture.encrypted("secret", "owner", PdfFixture::Encryption::aes256));
    ASSERT_TRUE(document->unlock(QStringLiteral("secret")));
    EXPECT_EQ(words(PrintCopy::of(*document, {0, 1, 2}, true).bytes()), "First Second Ada Third");
    EXPECT_EQ(words(PrintCopy::of(*document, {0, 1, 2}, false).bytes()), "First Second Ada Third");
}

} // namespace
