#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFError.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace {

/// Does to a document what makes the writer look at every part of a file, in each of its ways to write. Returns how
/// many of the ways failed.
int saveInEveryWay(const QByteArray& file) {
    int failures = 0;
    for (int way = 0; way < 5; ++way) {
        std::shared_ptr<PDFDocument> document;
        try {
            document = PDFDocument::fromData(file);
        } catch (const PDFError&) {
            return failures; // not even opened
        }
        if (document->pageCount() == 0)
            return failures;
        (void)document->page(0)->string();
        (void)document->page(0)->bounds(PDFDisplayBox::cropBox);
        PDFDocument other;
        auto note = std::make_shared<PDFAnnotation>(QRectF(0, 0, 50, 50), PDFAnnotationSubtype::square);
        note->setColor(QColor(Qt::red));
        switch (way) {
        case 0:
            document->page(0)->addAnnotation(note);
            while (document->page(0)->annotations().size() > 1)
                document->page(0)->removeAnnotation(document->page(0)->annotations().front());
            break;
        case 1:
            document->removePage(document->pageCount() - 1);
            break;
        case 2:
            document->insert(document->removePage(0), document->pageCount());
            break;
        case 3:
            other.insert(document->page(0)->copy(), 0);
            break;
        case 4:
            document->insert(document->page(0)->copy(), 0);
            for (const auto& annotation : document->page(1)->annotations())
                annotation->setWidgetStringValue(QStringLiteral("x"));
            break;
        }
        try {
            const QByteArray saved = (way == 3 ? other : *document).dataRepresentation();
            EXPECT_FALSE(saved.isEmpty());
            (void)PDFDocument::fromData(saved)->pageCount();
        } catch (const PDFError& error) {
            EXPECT_FALSE(error.sentence().isEmpty());
            ++failures;
        }
    }
    return failures;
}

} // namespace

TEST(WriterHostileTest, CirclesEnd) {
    PdfFixture pdf;
    pdf.addPages(3, QStringLiteral("page"));
    // An outline whose items follow each other in a circle and are their own children.
    const QByteArray item = pdf.reserveObject();
    const QByteArray outlines = pdf.addObject("<< /First " + item + " /Last " + item + " >>");
    pdf.fillObject(item, "<< /Title (x) /Parent " + outlines + " /Next " + item + " /First " + item + " /Dest [" +
                             pdf.pageReference(2) + " /Fit] >>");
    pdf.setRootKey("/Outlines", outlines);
    // Trees whose nodes are their own kids.
    const QByteArray names = pdf.reserveObject();
    pdf.fillObject(names, "<< /Kids [" + names + ' ' + names + "] /Names [(a) [" + pdf.pageReference(2) + " /Fit]] >>");
    pdf.setNamesKey("/Dests", names);
    const QByteArray parents = pdf.reserveObject();
    pdf.fillObject(parents, "<< /Kids [" + parents + "] >>");
    const QByteArray element = pdf.reserveObject();
    pdf.fillObject(element, "<< /S /P /K [" + element + " 0 " + element + "] /Pg " + pdf.pageReference(2) + " >>");
    pdf.setRootKey("/StructTreeRoot",
                   pdf.addObject("<< /K " + element + " /ParentTree " + parents + " /IDTree " + names + " >>"));
    // Fields that are their own parents and kids.
    const QByteArray field = pdf.reserveObject();
    pdf.fillObject(field, "<< /Type /Annot /Subtype /Widget /FT /Tx /Parent " + field + " /Kids [" + field +
                              "] /Rect [0 0 9 9] /V (v) >>");
    pdf.setRootKey("/AcroForm", "<< /Fields [" + field + ' ' + field + "] /CO [" + field + "] >>");
    for (int page : {0, 2})
        pdf.appendToArray(pdf.pageReference(page), "/Annots", field);
    // An article whose beads never come back to the first, and actions that follow each other.
    const QByteArray bead = pdf.reserveObject();
    pdf.fillObject(bead, "<< /N " + bead + " /V " + bead + " /P " + pdf.pageReference(2) + " >>");
    pdf.setRootKey("/Threads", "[<< /F " + bead + " >> " + bead + " null 7]");
    const QByteArray action = pdf.reserveObject();
    pdf.fillObject(action, "<< /S /URI /URI (x) /Next [" + action + ' ' + action + "] >>");
    pdf.setRootKey("/OpenAction", action);
    pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A " + action + " >>");
    // Forms that draw themselves.
    const QByteArray form = pdf.addStream("<< /Subtype /Form /BBox [0 0 1 1] >>", "/X Do");
    pdf.setKey(form, "/Resources", "<< /XObject << /X " + form + " >> /Pattern << /P " + form + " >> >>");
    for (int page : {0, 1, 2})
        pdf.setPageKey(page, "/Resources", "<< /XObject << /X " + form + " >> >>");
    EXPECT_EQ(saveInEveryWay(pdf.bytes()), 0);
    EXPECT_EQ(saveInEveryWay(pdf.bytes(PdfFixture::Style::objectStreams)), 0);
    EXPECT_EQ(PDFDocument::fromData(pdf.bytes())->outlineRoot()->numberOfChildren(), 1);

    // A page tree that is its own kid.
    PdfFixture tree;
    tree.addPages(2);
    const QByteArray node = tree.reserveObject();
    tree.fillObject(node, "<< /Type /Pages /Kids [" + node + ' ' + tree.pageReference(0) + "] /Count 2 /Parent " +
                              node + " >>");
    tree.setPageKey(0, "/Parent", node);
    tree.setPageKey(1, "/Parent", tree.pageReference(1));
    EXPECT_EQ(saveInEveryWay(tree.bytes()), 0);
}

TEST(WriterHostileTest, LongChainsDoNotOverflowTheStack) {
    PdfFixture pdf;
    pdf.addPages(2);
    constexpr int length = 20000; // frames of 420 bytes fill a stack
    // A chain of objects that a page refers to, and a structure tree and an outline as deep.
    QByteArray next = "null";
    for (int i = 0; i < length; ++i)
        next = pdf.addObject("<< /Next " + next + " >>");
    pdf.setPageKey(0, "/PieceInfo", next);
    QByteArray element = pdf.addObject("<< /S /P /K 0 /Pg " + pdf.pageReference(1) + " >>");
    QByteArray item = "null";
    for (int i = 0; i < length; ++i) {
        element = pdf.addObject("<< /S /P /K " + element + " >>");
        item = pdf.addObject("<< /Title (x) /First " + item + " >>");
    }
    pdf.setRootKey("/StructTreeRoot", "<< /K " + element + " >>");
    pdf.setRootKey("/Outlines", "<< /First " + item + " >>");
    EXPECT_EQ(saveInEveryWay(pdf.bytes()), 0);
}

TEST(WriterHostileTest, OddValuesAreTakenForWhatTheyAre) {
    const char* const oddities[] = {"null", "7", "(text)", "[]", "[null]", "<< >>", "[[[[1 2]]]]", "/Name", "99 0 R"};
    using Put = void (*)(PdfFixture & pdf, const char* key, const char* odd);
    const std::pair<Put, std::vector<const char*>> places[] = {
        {[](PdfFixture& pdf, const char* key, const char* odd) { pdf.setRootKey(key, odd); },
         {"/Outlines", "/Names", "/Dests", "/StructTreeRoot", "/AcroForm", "/Threads", "/OCProperties", "/OpenAction",
          "/PageLabels", "/Metadata"}},
        {[](PdfFixture& pdf, const char* key, const char* odd) {
             for (const int page : {0, 1})
                 pdf.setPageKey(page, key, odd);
         },
         {"/Annots", "/Resources", "/Contents", "/MediaBox", "/Rotate", "/B", "/AA", "/StructParents"}},
        {[](PdfFixture& pdf, const char* key, const char* odd) {
             pdf.setKey(pdf.addTextField(0, QStringLiteral("f"), {0, 0, 50, 20}, QStringLiteral("v")), key, odd);
         },
         {"/AP", "/MK", "/BS", "/Parent", "/Kids", "/Rect", "/DA", "/Dest", "/A", "/Popup", "/IRT", "/V"}},
    };
    for (const auto& [put, keys] : places)
        for (const char* key : keys)
            for (const char* odd : oddities) {
                PdfFixture pdf;
                pdf.addPages(2);
                put(pdf, key, odd);
                EXPECT_EQ(saveInEveryWay(pdf.bytes()), 0) << key << ' ' << odd;
            }
}

TEST(WriterHostileTest, DamagedBytesNeverEndTheProgram) {
    PdfFixture pdf;
    pdf.addPages(4, QStringLiteral("page"));
    pdf.addTextField(0, QStringLiteral("f"), {0, 0, 50, 20}, QStringLiteral("v"));
    pdf.addNamedDestination("n", 2);
    pdf.tagPage(1, QStringLiteral("t"));
    std::mt19937 random(3);
    int failures = 0;
    for (const PdfFixture::Style style : {PdfFixture::Style::classic, PdfFixture::Style::objectStreams}) {
        const QByteArray file = pdf.bytes(style);
        for (int round = 0; round < 40; ++round) {
            QByteArray broken = file;
            for (int i = 0; i < 6; ++i)
                broken[qsizetype(random() % std::size_t(broken.size()))] = char(random());
            if (round % 4 == 0)
                broken.truncate(qsizetype(random() % std::size_t(broken.size())));
            failures += saveInEveryWay(broken);
        }
    }
    EXPECT_LT(failures, 60) << "of 400; most damage can be lived with";
}

TEST(WriterHostileTest, WhatWasRepairedIsSavedAsItWasShown) {
    struct Case {
        const char* what;
        QByteArray file;
        int pages;
    };
    std::vector<Case> cases;
    const auto add = [&cases](const char* what, int pages, const std::function<QByteArray(PdfFixture&)>& make) {
        PdfFixture fixture;
        fixture.addPages(4, QStringLiteral("Page %1"));
        cases.push_back({what, make(fixture), pages});
    };
    add("cut short", 4, [](PdfFixture& fixture) {
        const QByteArray file = fixture.bytes(PdfFixture::Style::objectStreams);
        return file.left(file.lastIndexOf("startxref"));
    });
    add("a page as its tree", 1, [](PdfFixture& fixture) {
        fixture.setRootKey("/Pages", fixture.pageReference(2));
        return fixture.bytes();
    });
    add("a node that counts too few", 4, [](PdfFixture& fixture) {
        fixture.nestPageTree(2);
        QByteArray file = fixture.bytes();
        return file.replace(file.indexOf("/Count 2"), 8, "/Count 1");
    });
    add("an object under another generation", 4, [](PdfFixture& fixture) {
        QByteArray file = fixture.bytes();
        const qsizetype header = file.lastIndexOf(" obj", file.indexOf("(Page 0)"));
        return file.replace(header - 1, 1, "7");
    });
    const auto loosen = [](QByteArray file, const char* key) {
        for (qsizetype at = file.indexOf(key); at >= 0; at = file.indexOf(key, at + 1))
            file[file.indexOf(" R", at) - 1] = '7';
        return file;
    };
    for (const char* key : {"/Contents ", "/Root "})
        add("references with another generation", 4, [&](PdfFixture& fixture) { return loosen(fixture.bytes(), key); });
    for (const auto cipher : {PdfFixture::Encryption::rc4, PdfFixture::Encryption::aes256})
        add("such ones in a protected file that is cut short", 4, [&](PdfFixture& fixture) {
            const QByteArray file = loosen(fixture.encrypted("", "owner", cipher), "/Contents ");
            return file.left(file.lastIndexOf("startxref"));
        });
    add("a page in two nodes", 3, [](PdfFixture& fixture) {
        const auto node = [&fixture](const QByteArray& kids) {
            return fixture.addObject("<< /Type /Pages /Count " + QByteArray::number(kids.count('R')) + " /Kids [" +
                                     kids + "] >>");
        };
        const QByteArray first = fixture.pageReference(0);
        const QByteArray nodes = node(first) + ' ' + node(fixture.pageReference(1) + ' ' + first);
        fixture.setRootKey("/Pages", fixture.addObject("<< /Type /Pages /Count 3 /Kids [" + nodes + "] >>"));
        return fixture.bytes();
    });
    const QByteArray start = "%PDF-1.4\n1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n2 0 obj\n<< /Type /Pages ";
    const QByteArray page = "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 612 792 ] >>";
    cases.push_back({"a page in its node", start + "/Count 1 /Kids [ " + page + " ] >>\nendobj\n", 1});
    const QByteArray two = start + "/Count 2 /Kids [ 3 0 R 9 0 R ] >>\nendobj\n3 0 obj\n" + page + "\nendobj\n";
    cases.push_back({"a page that isn't there", two, 2});
    cases.push_back({"an object that can't be read", two + "5 0 obj\n<< /A 1 2 /B ) >>\nendobj\n", 2});
    cases.push_back({"a page without a number", QByteArray(two).replace("9 0 R", "0 0 R"), 2});
    cases.push_back(
        {"an object zero",
         two + "5 0 obj\n<< /Type /ObjStm /N 1 /First 4 /Length 8 >>\nstream\n0 0 null\nendstream\nendobj\n", 2});
    cases.push_back({"a number past all others", two + "2147483647 0 obj\n<< /Root 1 0 R >>\nendobj\n", 2});
    cases.push_back({"a protection that can't be read",
                     two + "6 0 obj\nE< /Filter /Standard >>\nendobj\ntrailer\n<< /Root 1 0 R /Encrypt 6 0 R >>\n", 2});
    cases.push_back({"a catalogue in the trailer",
                     two + "trailer\n<< /Root << /Type /Catalog /Pages 2 0 R >> >>\nstartxref\n0\n%%EOF\n", 2});
    for (const auto& [what, file, pages] : cases) {
        SCOPED_TRACE(what);
        const auto document = PDFDocument::fromData(file);
        ASSERT_EQ(document->pageCount(), pages);
        const auto marked = document->page(0);
        marked->addAnnotation(std::make_shared<PDFAnnotation>(QRectF(72, 72, 50, 50), PDFAnnotationSubtype::square));
        for (const bool moves : {false, true}) {
            if (moves)
                document->insert(document->removePage(pages - 1), 0);
            const QByteArray saved = document->dataRepresentation();
            EXPECT_EQ(PdfPrograms::complaints(saved), "");
            const auto reopened = PDFDocument::fromData(saved);
            EXPECT_EQ(reopened->string(), document->string());
            ASSERT_EQ(reopened->pageCount(), pages);
            for (int i = 0; i < pages; ++i)
                EXPECT_EQ(reopened->page(i)->annotations().size(), document->page(i) == marked ? 1U : 0U);
        }
    }
}
