#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QImage>

#include <gtest/gtest.h>

namespace {

// What must disappear with the second page, each word in one place of the file.
const QByteArrayList secrets{
    "GoneText",     "GoneNote",      "GonePopup",       "GoneField",    "GoneValue",       "GoneGroup",    "GoneActual",
    "GoneTitle",    "GoneName",      "GoneOldName",     "GoneThread",   "GonePicture",     "GoneProperty", "GonePiece",
    "GoneTemplate", "GoneElementId", "GoneLinkElement", "GoneSpan",     "GoneRadioChoice", "GoneShared",   "GoneXfa",
    "GoneTrigger",  "GoneOrphan",    "GoneUnlisted",    "GoneThumb",    "GoneAppData",     "GoneEntry",    "GonePart",
    "GoneMap",      "GoneRich",      "GoneLook",        "GoneAttached", "GoneMiniature",   "GoneWide",
};

// What must stay, though it stands close to what goes.
const QByteArrayList keepers{
    "StaysText1",   "StaysText3", "StaysNote",    "StaysField",   "StaysValue",    "StaysActual1",
    "StaysActual3", "StaysName",  "StaysOldName", "StaysThread",  "StaysEntry",    "StaysPicture",
    "StaysFile",    "StaysLayer", "StaysLabel",   "StaysXmp",     "StaysProperty", "StaysShared",
    "StaysSection", "StaysGroup", "StaysReset",   "StaysHeading",
};

/// Page by page; the second is the one that goes.
const QByteArrayList contents{"/P1  /P1 DP\r/Im1 Do % kept\nBT /F1 12. Tf 72 720 Td (StaysText1)Tj ET ",
                              "/P2 /P2 DP /Im2 Do /Im1 Do BT /F1 12 Tf 72 720 Td (GoneText) Tj /F2 9 Tf (x) Tj ET",
                              "/Im1 Do BT /F1 +12 Tf 72 0720 Td\t(StaysText3) Tj ET"};

bool contains(const QByteArray& file, const QByteArray& word) {
    QByteArray wide; // UTF-16
    for (const char letter : word)
        wide.append('\0').append(letter);
    const QByteArray lower = file.toLower();
    return file.contains(word) || file.contains(wide) || lower.contains(word.toHex()) || lower.contains(wide.toHex());
}

/// Three pages with everything that a page can leave its traces in.
void fill(PdfFixture& pdf) {
    // One dictionary of resources for all pages.
    const QByteArray gone = pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] >>", "% GonePicture");
    const QByteArray stays = pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] >>", "% StaysPicture");
    const QByteArray resources = pdf.addObject(
        "<< /XObject << /Im1 " + stays + " /Im2 " + gone +
        " >> /Properties << /P1 << /Mine (StaysProperty) >> /P2 << /Mine (GoneProperty) >> >> /Font << /F1 "
        "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >> /F2 "
        "<< /Type /Font /Subtype /Type1 /BaseFont /Courier /ToUnicode " +
        pdf.addStream("<< >>", "% GoneMap") + " >> >> >>");
    for (const QByteArray& content : contents)
        pdf.addPageWithContent(content, resources);
    pdf.setPageKey(1, "/Thumb", pdf.addStream("<< /Width 1 /Height 1 >>", "GoneMiniature"));

    // Annotations.
    pdf.addAnnotation(0, "<< /Type /Annot /Subtype /Text /Rect [10 10 30 30] /Contents (StaysNote) >>");
    const QByteArray note = pdf.addAnnotation(1, "<< /Type /Annot /Subtype /Text /Rect [10 10 30 30] /Contents "
                                                 "(GoneNote) >>");
    const QByteArray popup =
        pdf.addAnnotation(1, "<< /Type /Annot /Subtype /Popup /Rect [0 0 9 9] /Contents (GonePopup) "
                             "/Parent " +
                                 note + " >>");
    pdf.setKey(note, "/Popup", popup);
    pdf.setKey(note, "/RC", "(<body><p>GoneRich</p></body>)");
    pdf.setKey(note, "/Subj", "<feff0047006f006e00650057006900640065>"); // GoneWide
    pdf.setKey(note, "/AP", "<< /N " + pdf.addStream("<< /Subtype /Form /BBox [0 0 9 9] >>", "% GoneLook") + " >>");
    pdf.addAnnotation(1, "<< /Subtype /FileAttachment /Rect [0 0 9 9] /FS << /F (a.txt) /EF << /F " +
                             pdf.addStream("<< >>", "GoneAttached") + " >> >> >>");

    // The form.
    pdf.addTextField(0, QStringLiteral("StaysField"), {10, 100, 100, 20}, QStringLiteral("StaysValue"));
    const QByteArray goneField =
        pdf.addTextField(1, QStringLiteral("GoneField"), {10, 100, 100, 20}, QStringLiteral("GoneValue"));
    const QByteArray unlisted = pdf.addObject("<< /FT /Tx /T (GoneUnlisted) /V (GoneUnlisted) >>");
    pdf.appendToArray(unlisted, "/Kids",
                      pdf.addAnnotation(1, "<< /Subtype /Widget /Rect [0 0 9 9] /Parent " + unlisted + " >>"));
    const QByteArray group =
        pdf.addRadioGroup(QStringLiteral("GoneGroup"), {{1, {10, 200, 10, 10}, "GoneRadioChoice"}}, "GoneRadioChoice");
    pdf.addRadioGroup(QStringLiteral("StaysGroup"), {{0, {10, 300, 10, 10}, "A"}, {1, {10, 300, 10, 10}, "B"}}, "A");
    pdf.addSharedTextField(QStringLiteral("StaysShared"), {{1, {10, 400, 90, 20}}, {2, {10, 400, 90, 20}}},
                           QStringLiteral("both pages"));
    pdf.addSharedTextField(QStringLiteral("GoneShared"), {{1, {10, 450, 90, 20}}, {1, {10, 480, 90, 20}}},
                           QStringLiteral("one page"));
    pdf.setKey(pdf.form(), "/CO", '[' + group + ']');
    const QByteArray reset = pdf.addTextField(0, QStringLiteral("StaysReset"), {10, 500, 90, 20}, QStringLiteral("x"));
    pdf.addAnnotation(0, "<< /Subtype /Link /Rect [0 0 9 9] /A << /S /ResetForm /Fields [" + group + " (StaysReset) " +
                             reset + " (GoneGroup) " + unlisted + "] /Next << /S /SubmitForm /F (x:) /Fields [" +
                             goneField + "] /Next << /S /Hide /T " + goneField + " >> >> >> /MyPage " +
                             pdf.pageReference(1) + " >>");
    pdf.setPageKey(1, "/Type", "/Odd");
    pdf.setKey(pdf.form(), "/XFA", pdf.addStream("<< >>", "<xfa>GoneXfa</xfa>"));

    // The structure tree. The pages have the keys 0 to 2 in its parent tree.
    pdf.tagPage(0, QStringLiteral("StaysActual1"));
    pdf.tagPage(1, QStringLiteral("GoneActual"), QStringLiteral("GoneTitle"));
    pdf.tagPage(2, QStringLiteral("StaysActual3"));
    const QByteArray section = pdf.addObject("<< /Type /StructElem /S /Sect /T (StaysSection) /ActualText (GoneSpan) "
                                             "/K [<< /Type /MCR /Pg " +
                                             pdf.pageReference(1) +
                                             " /MCID 1 >> << /Type "
                                             "/MCR /Pg " +
                                             pdf.pageReference(0) + " /MCID 1 >>] >>");
    const QByteArray outer =
        pdf.addObject("<< /Type /StructElem /S /Div /T (StaysSection) /Alt (GoneSpan) /K " + section + " >>");
    pdf.setKey(section, "/P", outer);
    const QByteArray withId =
        pdf.addObject("<< /Type /StructElem /S /H1 /ID (GoneElementId) /Pg " + pdf.pageReference(1) + " /K [2] >>");
    const QByteArray ofNote =
        pdf.addObject("<< /Type /StructElem /S /Annot /T (GoneLinkElement) /K << /Type /OBJR /Obj " + note + " >> >>");
    const QByteArray orphan =
        pdf.addObject("<< /Type /StructElem /S /P /T (GoneOrphan) /Pg " + pdf.pageReference(1) + " >>");
    pdf.appendToStructure({outer, withId, ofNote});
    pdf.setStructureKey("/IDTree", "<< /Names [(GoneElementId) " + withId + "] >>");
    pdf.appendToParentTree(77, '[' + orphan + ']');

    // Places.
    for (int page : {0, 2})
        pdf.addNamedDestination("StaysName" + QByteArray::number(page), page);
    pdf.addNamedDestination("GoneName", 1);
    pdf.addNamedDestination("StaysOldName", 2, true);
    pdf.addNamedDestination("GoneOldName", 1, true);
    pdf.setNamesKey("/Pages", "<< /Names [(GoneTemplate) " + pdf.pageReference(1) + "] >>");
    pdf.addNamedLink(0, {0, 0, 20, 20}, "GoneName");
    pdf.addNamedLink(0, {0, 0, 20, 20}, "GoneOldName");
    pdf.addNamedLink(0, {0, 0, 20, 20}, "StaysName2");
    pdf.addLink(0, {20, 0, 20, 20}, 1);
    pdf.addLink(0, {20, 0, 20, 20}, 2);
    pdf.setPageKey(2, "/AA", "<< /O << /S /GoTo /D (GoneName) /Note (GoneTrigger) >> >>");
    pdf.setRootKey("/OpenAction", '[' + pdf.pageReference(1) + " /Fit]");
    pdf.setOutline(
        {{QStringLiteral("StaysEntry1"), 0},
         {QStringLiteral("GoneEntry2"), 1, {{QStringLiteral("GoneEntry3"), -1, {}, "GoneName"}}},
         {QStringLiteral("StaysHeading"), 1, {{QStringLiteral("GoneEntry4"), 1}, {QStringLiteral("StaysEntry5"), 0}}},
         {QStringLiteral("GonePart"), -1, {{QStringLiteral("GoneEntry6"), 1}}},
         {QStringLiteral("StaysEntry7"), 2}});
    pdf.addThread(QStringLiteral("StaysThread"), {0, 1, 2});
    pdf.addThread(QStringLiteral("GoneThread"), {1, 1});
    pdf.setPageLabels("0 << /S /D /P (StaysLabel) >>");

    // Parts of the document.
    pdf.setPageKey(1, "/PieceInfo", "<< /App << /Private (GonePiece) >> >>");
    pdf.setRootKey("/PieceInfo", "<< /App << /Private (GoneAppData) >> >>");
    pdf.setMetadata(
        "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
        "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmlns:my='urn:my'><xmp:Thumbnails><rdf:Alt><rdf:li>GoneThumb"
        "</rdf:li></rdf:Alt></xmp:Thumbnails><my:own>StaysXmp</my:own></rdf:Description></rdf:RDF>");
    pdf.attach(QStringLiteral("StaysFile.txt"), "hello");
    pdf.addLayer(0, QStringLiteral("StaysLayer"), "", true);
}

void expectNothingLeft(const QByteArray& file, const QByteArrayList& apartFrom = {}) {
    const QByteArray all = PdfPrograms::unpacked(file);
    ASSERT_FALSE(all.isEmpty());
    const QByteArray raw = PdfFixture::withStreamsInflated(file);
    for (const QByteArray& word : secrets)
        EXPECT_EQ(contains(all, word) || contains(raw, word), apartFrom.contains(word)) << word.toStdString();
}

/// Where the page's links lead, as page indices; links that lead nowhere are left out.
std::vector<int> pagesLinkedFrom(const PDFDocument& document, int page) {
    std::vector<int> pages;
    for (const auto& annotation : document.page(page)->annotations())
        if (annotation->destination())
            pages.push_back(document.index(annotation->destination()->page().get()));
    return pages;
}

class RemovalTest : public testing::TestWithParam<PdfFixture::Style> {};

} // namespace

TEST_P(RemovalTest, LeavesNothingOfThePage) {
    PdfFixture pdf;
    fill(pdf);
    const QByteArray before = pdf.bytes(GetParam());
    const QByteArray unpackedBefore = PdfPrograms::unpacked(before);
    for (const QByteArray& word : secrets + keepers)
        ASSERT_TRUE(contains(unpackedBefore, word)) << word.toStdString();

    const auto document = PDFDocument::fromData(before);
    document->removePage(1);
    const QByteArray after = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    expectNothingLeft(after);
    const QByteArray unpackedAfter = PdfPrograms::unpacked(after);
    for (const QByteArray& word : keepers)
        EXPECT_TRUE(contains(unpackedAfter, word)) << word.toStdString();

    const auto reopened = PDFDocument::fromData(after);
    ASSERT_EQ(reopened->pageCount(), 2);
    EXPECT_EQ(reopened->page(1)->string(), QStringLiteral("StaysText3"));
    const auto outline = reopened->outlineRoot();
    ASSERT_EQ(outline->numberOfChildren(), 3);
    ASSERT_EQ(outline->child(1)->numberOfChildren(), 1);
    EXPECT_EQ(reopened->index(outline->child(0)->destination()->page().get()), 0);
    EXPECT_EQ(outline->child(1)->label(), QStringLiteral("StaysHeading"));
    EXPECT_FALSE(outline->child(1)->destination());
    EXPECT_EQ(reopened->index(outline->child(1)->child(0)->destination()->page().get()), 0);
    EXPECT_EQ(reopened->index(outline->child(2)->destination()->page().get()), 1);
    EXPECT_TRUE(unpackedAfter.contains("/D (StaysName2)"));
    EXPECT_EQ(pagesLinkedFrom(*reopened, 0), (std::vector{1, 1})) << "one by page and one by name";
}

TEST_P(RemovalTest, LeavesNothingOfAPageThatAPictureReplaces) {
    PdfFixture pdf;
    fill(pdf);
    pdf.setPageKey(1, "/MediaBox", "[-50 20 562 812]");
    pdf.setPageKey(1, "/CropBox", "[0 40 500 700]");
    pdf.setPageKey(1, "/Rotate", "90");
    pdf.setPageKey(1, "/UserUnit", "2");
    const QByteArray first = pdf.bytes(GetParam());
    const auto earlier = PDFDocument::fromData(first);
    earlier->page(1)->annotations().front()->setContents(QStringLiteral("GoneLater"));
    const QByteArray before = earlier->dataRepresentation();
    ASSERT_TRUE(before.startsWith(first) && contains(before.mid(first.size()), "GoneLater"));
    const auto document = PDFDocument::fromData(before);
    const auto original = document->page(1);
    EXPECT_FALSE(original->annotations().empty());
    const auto entry = document->outlineRoot()->child(1);
    QImage picture(100, 130, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    const auto flat = PDFPage::fromImage(picture, *original);
    EXPECT_EQ(document->replacePage(1, flat), original);
    EXPECT_EQ(entry->destination()->page(), flat);
    EXPECT_EQ(pagesLinkedFrom(*document, 0), (std::vector{1, 1, 2, 1, 2}));
    const QByteArray after = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    expectNothingLeft(after, {"GoneName", "GoneOldName", "GoneTrigger", "GoneEntry", "GonePart"});
    const QByteArray raw = PdfFixture::withStreamsInflated(after);
    EXPECT_FALSE(contains(raw, "GoneLater"));
    EXPECT_TRUE(raw.contains(contents[0]) && raw.contains(contents[2])) << "byte for byte";
    const auto reopened = PDFDocument::fromData(after);
    EXPECT_EQ(reopened->string(), QStringLiteral("StaysText1\f\fStaysText3\f"));
    EXPECT_EQ(reopened->page(1)->geometry(), original->geometry());
    EXPECT_EQ(reopened->page(1)->label(), QStringLiteral("StaysLabel2"));
    EXPECT_EQ(pagesLinkedFrom(*reopened, 0), (std::vector{1, 1, 2, 1, 2}));
    const auto outline = reopened->outlineRoot();
    for (const auto& item : {outline->child(1), outline->child(1)->child(0), outline->child(3)->child(0)})
        EXPECT_EQ(reopened->index(item->destination()->page().get()), 1);
    EXPECT_EQ(reopened->page(1)->thumbnail({61, 61}, PDFDisplayBox::mediaBox).pixelColor(30, 30),
              QColor(Qt::darkGreen));

    // Taken back, the document is the old one again.
    document->replacePage(1, original);
    EXPECT_EQ(entry->destination()->page(), original);
    EXPECT_EQ(document->dataRepresentation(), before);
}

TEST_P(RemovalTest, ExtractedPagesBringNothingOfTheOthers) {
    PdfFixture pdf;
    fill(pdf);
    const auto document = PDFDocument::fromData(pdf.bytes(GetParam()));
    PDFDocument extracted;
    extracted.insert(document->page(0)->copy(), 0);
    extracted.insert(document->page(2)->copy(), 1);
    const QByteArray file = extracted.dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(file), "");
    const QByteArray all = PdfPrograms::unpacked(file);
    for (const QByteArray& word : secrets)
        EXPECT_FALSE(contains(all, word)) << word.toStdString();
    for (const char* word : {"StaysText1", "StaysText3", "StaysNote", "StaysField", "StaysValue", "StaysGroup",
                             "StaysShared", "StaysLayer"})
        EXPECT_TRUE(contains(all, word)) << word;
    const auto reopened = PDFDocument::fromData(file);
    EXPECT_EQ(pagesLinkedFrom(*reopened, 0), (std::vector{1, 1})) << "one by page and one by name";
}

TEST_P(RemovalTest, LeavesNothingOfAnAnnotation) {
    for (const bool appends : {false, true}) {
        PdfFixture pdf;
        pdf.addPage({QStringLiteral("StaysText")});
        pdf.addPage({});
        pdf.tagPage(0, QStringLiteral("StaysActual"));
        pdf.addPage({QString(500, QLatin1Char('w'))});
        const QByteArray note =
            pdf.addAnnotation(0, "<< /Subtype /Text /Rect [10 10 30 30] /Contents (GoneNote) /StructParent 77 >>");
        const QByteArray widgets[] = {
            pdf.addTextField(0, QStringLiteral("a"), {0, 50, 9, 9}, QStringLiteral("GoneValue")),
            pdf.addSharedTextField(QStringLiteral("b"), {{0, {0, 70, 9, 9}}}, QStringLiteral("GoneShared"))};
        pdf.addAnnotation(1, "<< /Subtype /Link /Rect [0 0 9 9] /A << /S /Hide /T [" + note + ' ' + widgets[0] + ' ' +
                                 widgets[1] + "] >> >>");
        const QByteArray element =
            pdf.addObject("<< /Type /StructElem /S /Annot /Alt (GoneAlt) /K [<< /Type /OBJR /Obj " + note + " >>] >>");
        pdf.appendToStructure({element});
        pdf.appendToParentTree(77, element);
        const QByteArray before = pdf.bytes(GetParam());
        const auto document = PDFDocument::fromData(before);
        for (const auto& annotation : std::vector(document->page(0)->annotations()))
            document->page(0)->removeAnnotation(annotation);
        if (!appends)
            document->removePage(2);
        const QByteArray after = document->dataRepresentation();
        EXPECT_EQ(after.startsWith(before), appends);
        EXPECT_EQ(PdfPrograms::complaints(after), "");
        const QByteArray all = PdfPrograms::unpacked(after);
        for (const char* word : {"GoneNote", "GoneAlt", "GoneValue", "GoneShared"})
            EXPECT_FALSE(contains(all, word)) << word;
        EXPECT_TRUE(contains(all, "StaysActual"));
    }
}

INSTANTIATE_TEST_SUITE_P(Styles, RemovalTest,
                         testing::Values(PdfFixture::Style::classic, PdfFixture::Style::objectStreams));

TEST(WriterRemovalTest, AllPagesMayGo) {
    PdfFixture pdf;
    fill(pdf);
    const auto document = PDFDocument::fromData(pdf.bytes());
    while (document->pageCount() > 0)
        document->removePage(0);
    const QByteArray after = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    expectNothingLeft(after);
    EXPECT_EQ(PDFDocument::fromData(after)->pageCount(), 0);
    EXPECT_EQ(PDFDocument::fromData(PDFDocument().dataRepresentation())->pageCount(), 0);
}

TEST(WriterRemovalTest, InheritedResourcesAreSharedToo) {
    PdfFixture pdf;
    const QByteArray gone = pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] >>", "% GoneInherited");
    const QByteArray stays = pdf.addStream("<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] >>", "% StaysInherited");
    for (const char* content : {"/Im1 Do", "/Im2 Do", "/Im1 Do", "/Im1 Do"}) {
        const int page = pdf.addPageWithContent(content);
        pdf.setPageKey(page, "/Resources", "null");
        pdf.setPageKey(page, "/MediaBox", "null");
    }
    pdf.nestPageTree(2, "/MediaBox [0 0 300 400] /Rotate 90 /Resources << /XObject << /Im1 " + stays + " /Im2 " + gone +
                            " >> >>");
    const auto document = PDFDocument::fromData(pdf.bytes());
    document->removePage(1);
    const QByteArray after = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    const QByteArray all = PdfPrograms::unpacked(after);
    EXPECT_TRUE(all.contains("StaysInherited"));
    const auto reopened = PDFDocument::fromData(after);
    ASSERT_EQ(reopened->pageCount(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(reopened->page(i)->bounds(PDFDisplayBox::mediaBox), QRectF(0, 0, 300, 400));
        EXPECT_EQ(reopened->page(i)->rotation(), 90);
    }
    EXPECT_FALSE(all.contains("GoneInherited"));
}
