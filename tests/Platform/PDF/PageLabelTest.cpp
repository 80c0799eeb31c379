#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

namespace {

/// "i, ii, 1", and " " for each page without a label.
std::string labels(const PDFDocument& document) {
    QStringList all;
    for (int i = 0; i < document.pageCount(); ++i) {
        all += document.label(i);
        EXPECT_EQ(document.page(i)->label(), all.last());
    }
    return all.join(QLatin1String(", ")).toStdString();
}

std::shared_ptr<PDFDocument> labelled(int pages, const QByteArray& nums,
                                      PdfFixture::Style style = PdfFixture::Style::objectStreams) {
    PdfFixture pdf;
    pdf.addPages(pages, QStringLiteral("page"));
    if (!nums.isEmpty())
        pdf.setPageLabels(nums);
    return PDFDocument::fromData(pdf.bytes(style));
}

} // namespace

TEST(PageLabelTest, AreReadInAllStyles) {
    struct Case {
        const char* nums;
        const char* labels; // of three pages
    };
    for (const Case& each : {
             Case{"", ", , "}, Case{"0 << /S /D >>", "1, 2, 3"},
             Case{"0 << /S /R /St 1998 >>", "MCMXCVIII, MCMXCIX, MM"},
             Case{"0 << /S /a /St 26 >> 2 << /S /A /St 53 /P (App ) >>", "z, aa, App AAA"},
             Case{"0 << /P (Cover) >> 1 << >>", "Cover, , "}, Case{"1 << /S /r >>", ", i, ii"},
             Case{"0 << /S /D /St -5 >> 2 (odd)", "1, 2, "},
             Case{"2 << /S /r /St 2000000000 >> 0 << /P <FEFF00e9> /S /D >>", "é1, é2, 2000000000"},
             Case{"] /Kids [<< /Nums [0 << /S /D >>] >>", ", , "}, // a node without a number of its own
         })
        EXPECT_EQ(labels(*labelled(3, each.nums)), each.labels) << each.nums;
}

TEST(PageLabelTest, StayWithTheirPages) {
    struct Case {
        const char* what;
        void (*change)(PDFDocument& document);
        const char* labels;
    };
    const Case cases[] = {
        {"moved", [](PDFDocument& d) { d.insert(d.removePage(3), 0); }, "2, i, ii, 1"},
        {"removed", [](PDFDocument& d) { d.removePage(1); }, "i, 1, 2"},
        {"all labelled alike removed", [](PDFDocument& d) { d.removePage(0), d.removePage(0); }, "1, 2"},
        {"brought in",
         [](PDFDocument& d) {
             const auto other = labelled(2, "0 << /S /A /P (x) >>");
             d.insert(other->page(1)->copy(), 1);
             d.insert(labelled(1, {})->page(0)->copy(), 5); // one without, called by its number
         },
         "i, xB, ii, 1, 2, 6"},
        {"taken back", [](PDFDocument& d) { d.insert(d.removePage(1), 1); }, "i, ii, 1, 2"},
    };
    for (const auto style : {PdfFixture::Style::classic, PdfFixture::Style::objectStreams})
        for (const Case& each : cases) {
            SCOPED_TRACE(each.what);
            const auto document = labelled(4, "0 << /S /r >> 2 << /S /D >>", style);
            each.change(*document);
            const QByteArray file = document->dataRepresentation();
            EXPECT_EQ(PdfPrograms::complaints(file), "");
            EXPECT_EQ(labels(*PDFDocument::fromData(file)), each.labels);
            PDFDocument copy;
            for (int i = 0; i < document->pageCount(); ++i)
                copy.insert(document->page(i)->copy(), i);
            EXPECT_EQ(labels(*PDFDocument::fromData(copy.dataRepresentation())), each.labels);
        }
    const auto document = labelled(2, {});
    document->removePage(0);
    EXPECT_FALSE(document->dataRepresentation().contains("/PageLabels")) << "none come where there were none";
}
