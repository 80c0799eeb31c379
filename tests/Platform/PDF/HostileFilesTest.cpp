#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PageRenderer.h"
#include "PageText.h"
#include "PdfFixtures.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <stop_token>
#include <thread>

namespace {

/// A file with something of everything.
QByteArray richFile(PdfFixture::Style style) {
    PdfFixture pdf;
    pdf.addPage({QStringLiteral("Text to find")});
    pdf.addPage({QStringLiteral("More text")});
    pdf.setOutline({{QStringLiteral("One"), 0, {{QStringLiteral("Two"), 1}}}});
    pdf.addNamedDestination("there", 1);
    pdf.addNamedLink(0, QRectF(10, 10, 50, 50), "there");
    pdf.addTextField(0, QStringLiteral("field"), QRectF(100, 100, 100, 20), QStringLiteral("value"));
    pdf.addCheckBox(1, QStringLiteral("box"), QRectF(100, 100, 20, 20), true);
    pdf.attach(QStringLiteral("a.txt"), "attached");
    pdf.tagPage(0, QStringLiteral("spoken"));
    pdf.setInfo("/Title", QStringLiteral("Rich"));
    return pdf.bytes(style);
}

/// All that a window does with a document. Returns false when it is refused.
bool readEverything(const QByteArray& bytes) {
    try {
        const auto document = PDFDocument::fromData(bytes);
        (void)document->unlock(QString());
        (void)document->documentAttributes();
        (void)document->outlineRoot();
        for (int i = 0; i < std::min(document->pageCount(), 4); ++i) {
            const auto page = document->page(i);
            (void)page->thumbnail(QSize(60, 60), PDFDisplayBox::cropBox);
            (void)page->text();
            for (const auto& annotation : page->annotations())
                (void)annotation->destination();
        }
        return true;
    } catch (const PDFError&) {
        return false;
    }
}

/// One page of endless work for each way in which a page can draw a form.
QByteArray endlessFile() {
    PdfFixture pdf;
    const QByteArray form = pdf.addEndlessForm();
    const QByteArray resources = "<< /XObject << /X " + form + " >> >>";
    pdf.addPageWithContent("/X Do", resources);
    const QByteArray pattern =
        pdf.addStream("<< /Type /Pattern /PatternType 1 /PaintType 1 /TilingType 1 /BBox [0 0 9 9] "
                      "/XStep 9 /YStep 9 /Resources " +
                          resources + " >>",
                      "/X Do");
    pdf.addPageWithContent("/Pattern cs /P scn 0 0 500 500 re f", "<< /Pattern << /P " + pattern + " >> >>");
    const QByteArray glyph = pdf.addStream("<< >>", "9 0 d0 /X Do");
    const QByteArray font =
        pdf.addObject("<< /Type /Font /Subtype /Type3 /FontBBox [0 0 9 9] /FontMatrix [1 0 0 1 0 0] "
                      "/CharProcs << /a " +
                      glyph +
                      " >> /Encoding << /Differences [97 /a] >> "
                      "/FirstChar 97 /LastChar 97 /Widths [9] /Resources " +
                      resources + " >>");
    pdf.addPageWithContent("BT /F 9 Tf 72 700 Td (aaa) Tj ET", "<< /Font << /F " + font + " >> >>");
    pdf.addPage({});
    pdf.addAnnotation(3, "<< /Type /Annot /Subtype /Stamp /Rect [0 0 612 792] /AP << /N " + form + " >> >>");
    return pdf.bytes();
}

} // namespace

TEST(HostileFiles, CutShortAnywhere) {
    for (const auto style : {PdfFixture::Style::classic, PdfFixture::Style::objectStreams}) {
        const QByteArray whole = richFile(style);
        ASSERT_TRUE(readEverything(whole));
        for (qsizetype length = 0; length < whole.size(); length += std::max<qsizetype>(1, whole.size() / 80))
            (void)readEverything(whole.left(length));
    }
}

TEST(HostileFiles, WithWrongBytesAnywhere) {
    std::mt19937 random(20240229); // the same damage at each run
    int opened = 0;
    for (const auto style : {PdfFixture::Style::classic, PdfFixture::Style::objectStreams}) {
        const QByteArray whole = richFile(style);
        for (int round = 0; round < 150; ++round) {
            QByteArray damaged = whole;
            for (int i = 0; i < 1 + round % 20; ++i) {
                const auto at = qsizetype(random() % std::size_t(damaged.size()));
                switch (random() % 3) {
                case 0:
                    damaged[at] = char(random());
                    break;
                case 1:
                    damaged[at] = "0123456789/[]<>()"[random() % 17];
                    break;
                default:
                    damaged.remove(at, 1 + qsizetype(random() % 8));
                    break;
                }
            }
            opened += readEverything(damaged) ? 1 : 0;
        }
    }
    EXPECT_GT(opened, 100); // most damage is survived, or the test would say little
}

TEST(HostileFiles, NestedDeeperThanAnyStack) {
    for (const QByteArray open : {"[", "<< /A "}) {
        QByteArray nested;
        for (int i = 0; i < 200000; ++i)
            nested += open;
        const QByteArray file = "%PDF-1.7\n1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n2 0 obj\n"
                                "<< /Type /Pages /Count 1 /Kids [3 0 R] >>\nendobj\n3 0 obj\n"
                                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Annots [4 0 R] /Contents 4 0 R >>\n"
                                "endobj\n4 0 obj\n" +
                                nested + "\nendobj\ntrailer\n<< /Root 1 0 R >>\n";
        (void)readEverything(file);
    }
    SUCCEED();
}

TEST(HostileFiles, UnpackingToGigabytes) {
    // A stream of zeros packed again and again: each filter unpacks a thousandfold.
    QByteArray data(8 << 20, '\0');
    QByteArray filters;
    for (int i = 0; i < 3; ++i) {
        data = qCompress(data, 9).mid(4);
        filters += "/FlateDecode ";
    }
    PdfFixture pdf;
    pdf.addPageWithContent("/X Do", "<< /XObject << /X " +
                                        pdf.addStream("<< /Type /XObject /Subtype /Image /Width 60000 /Height 60000 "
                                                      "/BitsPerComponent 8 /ColorSpace /DeviceRGB /Filter [ " +
                                                          filters + "] >>",
                                                      data) +
                                        " >> >>");
    EXPECT_TRUE(readEverything(pdf.bytes()));
}

TEST(HostileFiles, EndlessWorkEndsWhenItIsCancelled) {
    const auto source = PDFSource::open(endlessFile());
    ASSERT_EQ(source->pageCount(), 4);
    for (int page = 0; page < source->pageCount(); ++page) {
        SCOPED_TRACE(page);
        std::stop_source stop;
        std::atomic<bool> cancelled = false;
        std::jthread canceller([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            stop.request_stop();
            cancelled = true;
        });
        (void)source->readText(page, stop.get_token());
        (void)source->text(page, stop.get_token());
        const PageRenderRequest request{{source, page}, {}, true, {}, QRect(0, 0, 60, 60)};
        EXPECT_TRUE(PageRenderer::render(request, &cancelled).isNull());
    }
}

TEST(HostileFiles, EndlessWorkEndsByItself) {
    const auto document = PDFDocument::fromData(endlessFile());
    EXPECT_TRUE(document->page(0)->string().startsWith(QStringLiteral("Again")));
    QImage canvas(QSize(60, 60), QImage::Format_RGB32);
    QPainter painter(&canvas);
    const auto stamp = document->page(3)->annotations().at(0);
    stamp->draw(PDFDisplayBox::cropBox, painter);
}
