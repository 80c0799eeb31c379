#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QDir>
#include <QFile>

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace {

/// What stands on the pages, as another program reads it: "p0|p1|p2".
std::string pageTexts(const QByteArray& file, const QString& password = {}) {
    QStringList pages;
    for (const QString& page : PdfPrograms::text(file, 0, password).split(QLatin1Char('\f')))
        pages += page.simplified();
    pages.removeLast();
    return pages.join(QLatin1Char('|')).toStdString();
}

std::string numbered(const std::vector<int>& numbers) {
    QStringList texts;
    for (const int number : numbers)
        texts += QStringLiteral("p%1").arg(number);
    return texts.join(QLatin1Char('|')).toStdString();
}

void move(PDFDocument& document, int from, int to) {
    document.insert(document.removePage(from), to);
}

/// With thirty numbered pages, of which the nodes of the page tree have so many each, or all for none.
class MovingTest : public testing::TestWithParam<std::pair<PdfFixture::Style, int>> {
protected:
    MovingTest() {
        m_pdf.addPages(30, QStringLiteral("p%1"));
        std::iota(m_expected.begin(), m_expected.end(), 0);
    }
    QByteArray bytes() {
        if (m_isNested)
            m_pdf.nestPageTree(GetParam().second, "/CropBox [0 0 500 700] /Rotate 90");
        return m_pdf.bytes(GetParam().first);
    }
    /// Saves the document, whose pages are the expected ones and as they were, and opens it again.
    void saveAndOpen(const PDFDocument& document) {
        const QByteArray after = document.dataRepresentation();
        ASSERT_EQ(PdfPrograms::complaints(after), "");
        ASSERT_EQ(pageTexts(after), numbered(m_expected));
        m_reopened = PDFDocument::fromData(after);
        ASSERT_FALSE(m_reopened->wasRepaired());
        for (int i = 0; i < m_reopened->pageCount(); ++i) {
            EXPECT_EQ(m_reopened->page(i)->rotation(), m_isNested ? 90 : 0);
            EXPECT_EQ(m_reopened->page(i)->bounds(PDFDisplayBox::cropBox).width(), m_isNested ? 500 : 612);
        }
    }

    const bool m_isNested = GetParam().second > 0;
    PdfFixture m_pdf;
    std::vector<int> m_expected = std::vector<int>(30);
    std::shared_ptr<PDFDocument> m_reopened;
};

} // namespace

TEST_P(MovingTest, PagesMoveWithAllThatLeadsToThem) {
    m_pdf.setOutline(
        {{QStringLiteral("zero"), 0}, {QStringLiteral("ten"), 10}, {QStringLiteral("named"), -1, {}, "twenty"}});
    m_pdf.addNamedDestination("twenty", 20);
    m_pdf.addLink(0, {0, 0, 20, 20}, 29);
    m_pdf.addTextField(10, QStringLiteral("field"), {40, 40, 100, 20}, QString());
    const QByteArray before = bytes();
    const auto document = PDFDocument::fromData(before);
    const auto movePage = [&](int from, int to) {
        move(*document, from, to);
        const int number = m_expected[std::size_t(from)];
        m_expected.erase(m_expected.begin() + from);
        m_expected.insert(m_expected.begin() + to, number);
    };
    const auto placeOf = [&](int page) {
        return int(std::find(m_expected.begin(), m_expected.end(), page) - m_expected.begin());
    };
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        const int from = int(random() % 30);
        movePage(from, int(random() % 30));
        ASSERT_NO_FATAL_FAILURE(saveAndOpen(*document));
        const int leads[] = {0, 10, 20};
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(m_reopened->outlineRoot()->child(i)->destination()->page(), m_reopened->page(placeOf(leads[i])));
        const auto link = m_reopened->page(placeOf(0))->annotations().at(0);
        EXPECT_EQ(link->destination()->page(), m_reopened->page(placeOf(29)));
        EXPECT_EQ(m_reopened->page(placeOf(10))->annotations().at(0)->fieldName(), QStringLiteral("field"));
    }
    // Brought back into their old order, they are the old file.
    for (int i = 0; i < 30; ++i)
        movePage(placeOf(i), i);
    EXPECT_EQ(document->dataRepresentation(), before);
}

TEST_P(MovingTest, PagesLeaveTheRestOfTheirTreeAsItIs) {
    const auto document = PDFDocument::fromData(bytes());
    // One, the ends, all of some nodes, and nearly all.
    for (const auto& [first, count] :
         {std::pair(13, 1), std::pair(28, 1), std::pair(0, 1), std::pair(3, 9), std::pair(2, 15)}) {
        for (int i = 0; i < count; ++i)
            document->removePage(first);
        m_expected.erase(m_expected.begin() + first, m_expected.begin() + first + count);
        ASSERT_NO_FATAL_FAILURE(saveAndOpen(*document));
    }
}

INSTANTIATE_TEST_SUITE_P(Trees, MovingTest,
                         testing::Values(std::pair(PdfFixture::Style::classic, 0),
                                         std::pair(PdfFixture::Style::objectStreams, 0),
                                         std::pair(PdfFixture::Style::classic, 4),
                                         std::pair(PdfFixture::Style::objectStreams, 1),
                                         std::pair(PdfFixture::Style::linearized, 7)));

TEST(WriterPagesTest, AMoveIsASmallUpdate) {
    PdfFixture pdf;
    pdf.addPages(200, QStringLiteral("p%1"));
    pdf.nestPageTree(10);
    const QByteArray before = pdf.bytes(PdfFixture::Style::objectStreams);
    const auto document = PDFDocument::fromData(before);
    move(*document, 3, 150);
    const QByteArray after = document->dataRepresentation();
    EXPECT_TRUE(after.startsWith(before));
    EXPECT_LT(after.size() - before.size(), 2000);
}

TEST(WriterPagesTest, PagesOfSeveralFilesComeTogether) {
    PdfFixture one;
    one.addPages(3, QStringLiteral("one%1"));
    one.addLayer(0, QStringLiteral("Shown"), "", true);
    one.addLayer(1, QStringLiteral("Hidden"), "BT /F1 12 Tf 72 500 Td (hidden words) Tj ET", false);
    one.setPageKey(2, "/UserUnit", "2");
    PdfFixture two;
    two.addPages(2, QStringLiteral("two%1"));
    two.addNamedDestination("end", 1);
    two.addNamedLink(0, {0, 0, 20, 20}, "end");
    two.nestPageTree(1, "/Rotate 270");
    const auto first = PDFDocument::fromData(one.bytes(PdfFixture::Style::objectStreams));
    const auto second = PDFDocument::fromData(two.encrypted("open", "owner", PdfFixture::Encryption::aes256));
    ASSERT_TRUE(second->unlock(QStringLiteral("open")));

    PDFDocument merged;
    for (const auto& source : {first, second})
        for (int i = 0; i < source->pageCount(); ++i)
            merged.insert(source->page(i)->copy(), merged.pageCount());
    merged.insert(first->page(0)->copy(), merged.pageCount());
    const QByteArray file = merged.dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "") << "and it isn't protected";
    EXPECT_EQ(pageTexts(file), "one0|one1|one2|two0|two1|one0") << "the hidden layer stays hidden";
    const auto reopened = PDFDocument::fromData(file);
    EXPECT_EQ(reopened->page(2)->userUnit(), 2);
    EXPECT_EQ(reopened->page(3)->rotation(), 270);
    EXPECT_EQ(reopened->index(reopened->page(3)->annotations().at(0)->destination()->page().get()), 4);

    // Into a document that has a file of its own, which then stays as it was otherwise.
    second->insert(first->page(1)->copy(), 1);
    const QByteArray joined = second->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(joined, QStringLiteral("open")), "");
    EXPECT_EQ(pageTexts(joined, QStringLiteral("open")), "two0|one1|two1");
    EXPECT_NE(PdfPrograms::complaints(joined), "") << "still protected";
}

TEST(WriterPagesTest, PagesInUseTwiceAreTwoPages) {
    PdfFixture pdf;
    pdf.addPages(2, QStringLiteral("p%1"));
    pdf.addLink(0, {0, 0, 20, 20}, 1);
    const auto document = PDFDocument::fromData(pdf.bytes());
    document->insert(document->page(0)->copy(), 2);
    document->page(2)->addAnnotation(
        std::make_shared<PDFAnnotation>(QRectF(9, 9, 50, 50), PDFAnnotationSubtype::square));
    const QByteArray file = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    EXPECT_EQ(pageTexts(file), numbered({0, 1, 0}));
    EXPECT_EQ(PdfPrograms::unpacked(file).count("(p0) Tj"), 1) << "the content is stored once";
    const auto reopened = PDFDocument::fromData(file);
    EXPECT_EQ(reopened->page(0)->annotations().size(), 1U);
    ASSERT_EQ(reopened->page(2)->annotations().size(), 2U);
    EXPECT_EQ(reopened->index(reopened->page(2)->annotations()[0]->destination()->page().get()), 1);

    // Also when the first of them goes.
    document->removePage(0);
    EXPECT_EQ(pageTexts(document->dataRepresentation()), numbered({1, 0}));
}

class ProtectionTest : public testing::TestWithParam<PdfFixture::Encryption> {};

TEST(WriterPagesTest, OneThatStandsTwiceInTheTreeIsTwoPages) {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("One")});
    fixture.addPage({QStringLiteral("Two")});
    QByteArray file = fixture.bytes();
    const auto references =
        QRegularExpression(QStringLiteral("/Kids \\[ (\\d+ 0 R) (\\d+ 0 R)")).match(QString::fromLatin1(file));
    ASSERT_TRUE(references.hasMatch());
    file.replace(references.capturedStart(2), references.capturedLength(2), references.captured(1).toLatin1());
    const auto document = PDFDocument::fromData(file);
    ASSERT_EQ(document->page(1)->string(), QStringLiteral("One"));
    for (const int page : {1, 0}) {
        auto square =
            std::make_shared<PDFAnnotation>(QRectF(72, 72 + 100 * page, 50, 50), PDFAnnotationSubtype::square);
        document->page(page)->addAnnotation(square);
        const QByteArray saved = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(saved), "");
        const auto reopened = PDFDocument::fromData(saved);
        ASSERT_EQ(reopened->pageCount(), 2);
        EXPECT_EQ(reopened->page(0)->annotations().size(), page == 0 ? 1U : 0U);
        ASSERT_EQ(reopened->page(1)->annotations().size(), 1U);
        EXPECT_EQ(reopened->page(1)->annotations()[0]->bounds().bottom(), 222);
    }
}

TEST_P(ProtectionTest, StaysOnEverySave) {
    PdfFixture pdf;
    pdf.addPages(3, QStringLiteral("p%1"));
    pdf.addTextField(0, QStringLiteral("field"), {40, 40, 200, 20}, QStringLiteral("old"));
    const QByteArray before = pdf.encrypted("user", "owner", GetParam());
    const auto document = PDFDocument::fromData(before);
    EXPECT_THROW((void)document->dataRepresentation(), PDFError) << "locked";
    ASSERT_TRUE(document->unlock(QStringLiteral("user")));
    EXPECT_EQ(document->dataRepresentation(), before);
    document->removePage(1);
    document->page(0)->annotations()[0]->setWidgetStringValue(QStringLiteral("private value"));
    auto note = std::make_shared<PDFAnnotation>(QRectF(9, 9, 50, 50), PDFAnnotationSubtype::text);
    note->setContents(QStringLiteral("a private remark"));
    document->page(0)->addAnnotation(note);
    const QByteArray after = document->dataRepresentation();
    EXPECT_NE(PdfPrograms::complaints(after), "");
    EXPECT_FALSE(after.contains("private"));
    for (const char* password : {"user", "owner"}) {
        EXPECT_EQ(PdfPrograms::complaints(after, QString::fromLatin1(password)), "");
        const auto reopened = PDFDocument::fromData(after);
        EXPECT_TRUE(reopened->isLocked());
        EXPECT_TRUE(reopened->unlock(QString::fromLatin1(password)));
        EXPECT_EQ(reopened->page(0)->annotations().at(0)->widgetStringValue(), QStringLiteral("private value"));
        EXPECT_EQ(reopened->page(0)->annotations().at(1)->contents(), QStringLiteral("a private remark"));
    }
    EXPECT_EQ(pageTexts(after, QStringLiteral("user")), "p0 private value|p2");

    // A copy made page by page is free.
    PDFDocument copy;
    for (int i = 0; i < document->pageCount(); ++i)
        copy.insert(document->page(i)->copy(), i);
    EXPECT_EQ(pageTexts(copy.dataRepresentation()), "p0 private value|p2");
}

INSTANTIATE_TEST_SUITE_P(Ciphers, ProtectionTest,
                         testing::Values(PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes128,
                                         PdfFixture::Encryption::aes256));

TEST(WriterPagesTest, OutlinesKeepWhatIsNotEdited) {
    const auto item = [](const PDFDocument& document, int i) { return document.outlineRoot()->child(i); };
    struct Case {
        const char* what;
        void (*change)(PDFDocument& document);
        int place; // of the page that was the third
        bool isRenamed = false;
    };
    const Case cases[] = {
        {"annotated", [](PDFDocument& document) { document.page(0)->setRotation(90); }, 2},
        {"moved", [](PDFDocument& document) { move(document, 2, 5); }, 5},
        {"removed", [](PDFDocument& document) { document.removePage(0); }, 1},
        {"brought in", [](PDFDocument& document) { document.insert(document.page(1)->copy(), 0); }, 3},
        {"renamed",
         [](PDFDocument& document) {
             document.outlineRoot()->child(0)->setLabel(QStringLiteral("New"));
             document.setOutlineRoot(document.outlineRoot());
             document.removePage(1);
         },
         1, true},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        PdfFixture pdf;
        pdf.addPages(8, QStringLiteral("p%1"));
        pdf.setPageKey(7, "/Bulk", pdf.addStream("<< >>", QByteArray(100'000, 'x'))); // so that a save can append
        const QByteArray third = pdf.pageReference(2);
        pdf.setOutline(
            {{QStringLiteral("Old"), -1, {}, {}, {}, true, "/C [ 1 0 0 ] /F 3 /Dest [" + third + " /FitH 7]"},
             {QStringLiteral("By place"), -1, {}, {}, {}, true, "/A << /S /GoTo /D [ 2 /FitB ] >>"},
             {QStringLiteral("Print"), -1, {}, {}, {}, true, "/F 1 /A << /N /Print /S /Named >>"},
             {QStringLiteral("Other"), -1, {}, {}, {}, true, "/A << /D (x) /F (o.pdf) /S /GoToR >>"}});
        pdf.setRootKey("/AA", "<< /WP << /S /GoTo /D [ 2 /FitBH 5 ] >> >>");
        const auto document = PDFDocument::fromData(pdf.bytes());
        each.change(*document);
        const QByteArray file = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(file), "");
        const QByteArray all = PdfPrograms::unpacked(file).simplified();
        EXPECT_EQ(all.count("[ 2 /FitB"), each.place == 2 ? 2 : 0) << "a number leads to another page now";
        for (const char* kept : {"/C [ 1 0 0 ]", "/F 3", "/FitH 7", "/FitB", "/F 1", "/N /Print", "/F (o.pdf)"})
            EXPECT_TRUE(all.contains(kept)) << kept;
        const auto reopened = PDFDocument::fromData(file);
        ASSERT_EQ(reopened->outlineRoot()->numberOfChildren(), 4);
        EXPECT_EQ(item(*reopened, 0)->label() == QStringLiteral("New"), each.isRenamed);
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(reopened->index(item(*reopened, i)->destination()->page().get()), each.place);
    }
}

TEST(WriterPagesTest, ImportedPagesKeepTheirLooks) {
    PdfFixture pdf;
    const QByteArray resources = pdf.reserveObject();
    const QByteArray form = "<< /Type /XObject /Subtype /Form /BBox [0 0 200 200] ";
    const QByteArray part = pdf.addStream(form + ">>", "1 g 20 20 100 100 re f");
    const QByteArray mask = pdf.addStream(
        form + "/Group << /S /Transparency /CS /DeviceGray >> /Resources " + resources + " >>", "/Part Do");
    pdf.fillObject(resources, "<< /XObject << /Part " + part + " /Unused " + pdf.addStream(form + ">>", "% Unused") +
                                  " >> /ExtGState << /Masked << /SMask << /S /Luminosity /G " + mask +
                                  " >> >> >> /ColorSpace << /DefaultGray [/CalGray << /WhitePoint [0.9505 1 1.089] "
                                  "/Gamma 3 >>] >> >>");
    pdf.addPageWithContent("/Masked gs 0.5 g 0 0 200 200 re f", resources, {200, 200});
    pdf.addPageWithContent("/Unused Do", resources, {200, 200});
    const auto source = PDFDocument::fromData(pdf.bytes());
    PDFDocument target;
    target.insert(source->page(0)->copy(), 0);
    const QByteArray file = target.dataRepresentation();
    const QByteArray all = PdfPrograms::unpacked(file);
    EXPECT_TRUE(all.contains("/DefaultGray"));
    EXPECT_FALSE(all.contains("% Unused"));
    const auto picture = [](const PDFDocument& document) {
        return document.page(0)->thumbnail({200, 200}, PDFDisplayBox::cropBox);
    };
    EXPECT_NE(picture(*source).pixel(70, 130), picture(*source).pixel(150, 50)) << "what the mask lets through";
    EXPECT_EQ(picture(*PDFDocument::fromData(file)), picture(*source));

    source->removePage(1);
    EXPECT_EQ(picture(*PDFDocument::fromData(source->dataRepresentation())), picture(*source));
}

TEST(WriterPagesTest, WhatAPasswordOpensCanBeSaved) {
    using Encryption = PdfFixture::Encryption;
    struct Case {
        const char* what;
        Encryption encryption;
        QByteArray bytes; // as the program that protected the file took it
        const char* typed;
    };
    for (const Case& each : {Case{"PDFDocEncoding", Encryption::rc4, "\xA0uro \x84", "€uro —"},
                             Case{"PDFDocEncoding, composed", Encryption::aes128, "\xE9t\xE9", "e\u0301t\u00E9"},
                             Case{"UTF-8 where it isn't meant", Encryption::aes128, "usér", "usér"},
                             Case{"prepared", Encryption::aes256, "IX fi", "\u2168\u00A0\u00AD\uFB01"},
                             Case{"as it was typed", Encryption::aes256, "\u2168\u00A0", "\u2168\u00A0"},
                             Case{"no allowed one", Encryption::aes256, "\u200Ea", "\u200Ea"},
                             Case{"right to left", Encryption::aes256, "\u0627\u0628", "\u0627\u0628"}}) {
        SCOPED_TRACE(each.what);
        PdfFixture pdf;
        pdf.addPages(2, QStringLiteral("p%1"));
        const auto document = PDFDocument::fromData(pdf.encrypted(each.bytes, "owner", each.encryption));
        EXPECT_FALSE(document->unlock(QStringLiteral("IX")));
        ASSERT_TRUE(document->unlock(QString::fromUtf8(each.typed)));
        document->removePage(1);
        const auto saved = PDFDocument::fromData(document->dataRepresentation());
        EXPECT_FALSE(saved->unlock({}));
        ASSERT_TRUE(saved->unlockLike(*document));
        EXPECT_EQ(saved->pageCount(), 1);
    }
}

TEST(WriterPagesTest, ProtectedCopyOpensWithItsPasswordOnly) {
    PdfFixture pdf;
    pdf.addPages(2, QStringLiteral("p%1"));
    const auto document = PDFDocument::fromData(pdf.bytes(PdfFixture::Style::objectStreams));
    const QString path = QDir::temp().filePath(QStringLiteral("protected.pdf"));
    const QString password = QStringLiteral("pässwört ﬁ");
    for (const PDFWriteOptions& options : {PDFWriteOptions{password, password}, PDFWriteOptions{password, {}}}) {
        document->write(path, options);
        const auto copy = PDFDocument::fromFile(path);
        EXPECT_TRUE(copy->isLocked());
        for (const char* wrong : {"", "x", "passwort"})
            EXPECT_FALSE(copy->unlock(QString::fromLatin1(wrong))) << wrong;
        ASSERT_TRUE(copy->unlock(password.normalized(QString::NormalizationForm_KC)));
        EXPECT_EQ(copy->pageCount(), 2);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QStringList arguments{QStringLiteral("--show-encryption"),
                                    QStringLiteral("--password=") + password.normalized(QString::NormalizationForm_KC),
                                    QStringLiteral("FILE")};
        const auto told = PdfPrograms::run(QStringLiteral("qpdf"), arguments, file.readAll());
        EXPECT_TRUE(told.output.contains("R = 6")) << told.output.toStdString() << told.errors.toStdString();
        EXPECT_TRUE(told.output.contains("AESv3"));
    }
    document->write(path, {QString(), QStringLiteral("owner only")});
    EXPECT_FALSE(PDFDocument::fromFile(path)->isLocked());
    EXPECT_TRUE(PDFDocument::fromFile(path)->isEncrypted());
    EXPECT_EQ(document->dataRepresentation(), pdf.bytes(PdfFixture::Style::objectStreams))
        << "the document isn't changed";
}
