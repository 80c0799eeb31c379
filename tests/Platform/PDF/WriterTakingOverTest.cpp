#include "PDFAnnotation.h"
#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>

namespace {

/// A stream of packed objects, not compressed, with whatever a case wants between its parts.
struct Stream {
    std::vector<std::pair<int, QByteArray>> members;
    QByteArray afterHeader = " ";
    QByteArray afterFirst = " "; ///< object
    std::vector<int> notInUse = {};

    [[nodiscard]] QByteArray body() const { return header() + objects(); }
    [[nodiscard]] QByteArray header() const {
        QByteArray pairs;
        qsizetype offset = 0;
        for (std::size_t i = 0; i < members.size(); ++i) {
            pairs += QByteArray::number(members[i].first) + ' ' + QByteArray::number(offset) + ' ';
            offset += members[i].second.size() + (i == 0 ? afterFirst.size() : 1);
        }
        return pairs + afterHeader;
    }
    [[nodiscard]] QByteArray objects() const {
        QByteArray bytes;
        for (std::size_t i = 0; i < members.size(); ++i)
            bytes += members[i].second + (i == 0 ? afterFirst : " ");
        return bytes;
    }
};

/// Two pages, of which the second says "GoneText". The catalogue refers to the objects 10 to 12, which the streams
/// hold; objects of later streams replace those of earlier ones.
QByteArray fileWith(std::vector<Stream> streams,
                    const QByteArray& pageTree = "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] >>") {
    constexpr int firstStream = 20;
    const QByteArray page = "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 300 300] /Resources << /Font << /F1 7 0 R >> "
                            ">> /Annots [10 0 R] /Contents ";
    streams.push_back({{{1, "<< /Type /Catalog /Pages 2 0 R /Mine [10 0 R 11 0 R 12 0 R] >>"},
                        {2, pageTree},
                        {3, page + "5 0 R >>"},
                        {4, page + "6 0 R >>"},
                        {7, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"}}});
    QByteArray file = "%PDF-1.5\n";
    std::map<int, std::array<int, 3>> places{{0, {0, 0, 65535}}};
    const auto add = [&](int number, const QByteArray& keys, const QByteArray& bytes) {
        places[number] = {1, int(file.size()), 0};
        file += QByteArray::number(number) + " 0 obj\n<< " + keys + " /Length " + QByteArray::number(bytes.size()) +
                " >>\nstream\n" + bytes + "\nendstream\nendobj\n";
    };
    add(5, "", "BT /F1 12 Tf 20 200 Td (StaysText) Tj ET");
    add(6, "", "BT /F1 12 Tf 20 200 Td (GoneText) Tj ET");
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const Stream& stream = streams[i];
        const int number = firstStream + int(i);
        add(number,
            "/Type /ObjStm /N " + QByteArray::number(qsizetype(stream.members.size())) + " /First " +
                QByteArray::number(stream.header().size()),
            stream.body());
        for (std::size_t at = 0; at < stream.members.size(); ++at)
            if (const int member = stream.members[at].first;
                std::count(stream.notInUse.begin(), stream.notInUse.end(), member) == 0)
                places[member] = {2, number, int(at)};
    }
    const int own = firstStream + int(streams.size());
    const qsizetype start = file.size();
    places[own] = {1, int(start), 0};
    QByteArray rows;
    for (int number = 0; number <= own; ++number) {
        const auto& [kind, position, detail] = places[number];
        for (const int byte : {kind, position >> 8, position & 0xFF, detail >> 8, detail & 0xFF})
            rows += char(byte);
    }
    add(own, "/Type /XRef /W [1 2 2] /Root 1 0 R /Size " + QByteArray::number(own + 1), rows);
    return file + "startxref\n" + QByteArray::number(start) + "\n%%EOF\n";
}

struct Case {
    const char* name;
    std::vector<Stream> streams;
    bool isTakenOver; ///< the first of the streams
};

const QByteArray note = "<< /Type /Annot /Subtype /Text /Rect [0 0 9 9] /Contents (StaysNote) >>";

const QByteArray linkToStaying =
    "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /Contents (StaysLink) /Dest [3 0 R /Fit] >>";
const QByteArray linkToGone =
    "<< /Type /Annot /Subtype /Link /P 3 0 R /Rect [0 0 9 9] /A << /S /GoTo /D [4 0 R /XYZ 7 7 null] "
    ">> /NM (StaysLink) >>";

const std::vector<Case> cases{
    {"plain links", {{{{10, linkToStaying}, {11, "<< /StaysReply 10 0 R >>"}, {12, "/StaysName"}}}}, true},
    {"a plain link to the page", {{{{10, linkToGone}, {11, "<< /StaysReply 10 0 R >>"}, {12, "/StaysName"}}}}, false},
    {"values in any order", {{{{10, note}, {11, "<< /B<</D/E/C 1>>/A[1 .5(x)]>>"}, {12, "(StaysString)"}}}}, true},
    {"strings of all kinds", {{{{10, note}, {11, "[(a\\)\\(b)<464F>(\\376\\377\\0A)(a(b)c)]"}, {12, "/N#20x"}}}}, true},
    {"references", {{{{10, note}, {11, "[10 0 R 12  0\nR 1 2 3 4 0 R]"}, {12, "-1.50"}}}}, true},
    {"a reference to nothing", {{{{10, note}, {11, "[25 0 R 30 0 R 4 0 R]"}, {12, "2"}}}}, true},
    {"a reference far beyond", {{{{10, linkToStaying}, {11, "[8000000 0 R]"}, {12, "2"}}}}, false},
    {"a reference to the stream itself", {{{{10, note}, {11, "[20 0 R]"}, {12, "2"}}}}, false},
    {"a comment", {{{{10, note}, {11, "[1 % GoneComment\n2]"}, {12, "2"}}}}, false},
    {"a key that refers to the page", {{{{10, note}, {11, "<< /A 1 /GoneKey 4 0 R >>"}, {12, "2"}}}}, false},
    {"a link to the page",
     {{{{10, "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /S /GoTo /D [4 0 R /Fit] /Note (GoneNote) >> >>"},
        {11, "1"},
        {12, "2"}}}},
     false},
    {"an object that nothing refers to", {{{{10, note}, {11, "1"}, {12, "2"}, {13, "(GoneUnreachable)"}}}}, false},
    {"an object of no number", {{{{10, note}, {11, "1"}, {12, "2"}, {13, "(GoneFree)"}}, " ", " ", {13}}}, false},
    {"an object replaced later", {{{{10, note}, {11, "1"}, {12, "(GoneVersion)"}}}, {{{12, "(StaysVersion)"}}}}, false},
    {"something between objects", {{{{10, note}, {11, "1"}, {12, "2"}}, " ", " (GoneBetween) "}}, false},
    {"something before the objects", {{{{10, note}, {11, "1"}, {12, "2"}}, " (GoneBefore) "}}, false},
    {"deep nesting", {{{{10, note}, {11, QByteArray(150, '[') + QByteArray(150, ']')}, {12, "2"}}}}, false},
    {"two values of a key", {{{{10, note}, {11, "<< /A (GoneFirst) /A 2 >>"}, {12, "2"}}}}, false},
};

} // namespace

TEST(WriterTakingOverTest, StreamsOfObjectsStayOnlyWithoutAnythingThatIsGone) {
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const QByteArray before = fileWith(each.streams);
        ASSERT_TRUE(before.contains("GoneText"));
        const auto document = PDFDocument::fromData(before);
        ASSERT_EQ(document->pageCount(), 2);
        ASSERT_FALSE(document->wasRepaired());
        document->removePage(1);
        const QByteArray after = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(after), "");
        EXPECT_EQ(after.contains(each.streams.front().body()), each.isTakenOver);
        const QByteArray all = PdfFixture::withStreamsInflated(after);
        EXPECT_FALSE(all.contains("Gone")) << all.mid(all.indexOf("Gone") - 40, 80).toStdString();
        EXPECT_EQ(all.count("Stays"), PdfFixture::withStreamsInflated(before).count("Stays"));
        EXPECT_EQ(PdfPrograms::text(after).simplified(), QStringLiteral("StaysText"));
        EXPECT_FALSE(PdfPrograms::unpacked(after).contains("/XYZ"));
        EXPECT_EQ(PDFDocument::fromData(after)->page(0)->annotations().size(), 1U);
    }
}

TEST(WriterTakingOverTest, MostOfALargeFileStaysAsItIs) {
    constexpr int pages = 120;
    PdfFixture pdf;
    for (int i = 0; i < pages; ++i) {
        pdf.addPage({QStringLiteral("p%1").arg(i)});
        for (int number = 0; number < 5; ++number)
            pdf.addAnnotation(i, "<< /Type /Annot /Subtype /Text /Rect [10 10 30 30] /Contents (Note" +
                                     QByteArray::number(i) + ") >>");
    }
    pdf.nestPageTree(10);
    const QByteArray before = pdf.bytes(PdfFixture::Style::objectStreams);
    const auto document = PDFDocument::fromData(before);
    document->removePage(77);
    const QByteArray after = document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(after), "");
    EXPECT_FALSE(PdfFixture::withStreamsInflated(after).contains("Note77"));
    int streams = 0;
    int kept = 0;
    for (qsizetype at = before.indexOf("/ObjStm"); at >= 0; at = before.indexOf("/ObjStm", at + 1)) {
        const qsizetype start = before.indexOf("stream\n", at);
        kept += after.contains(before.mid(start, before.indexOf("endstream", start) - start)) ? 1 : 0;
        ++streams;
    }
    EXPECT_GT(streams, 5);
    EXPECT_GE(kept, streams / 2);

    // What was written can be added to.
    const auto reopened = PDFDocument::fromData(after);
    ASSERT_EQ(reopened->pageCount(), pages - 1);
    EXPECT_EQ(reopened->page(77)->string(), QStringLiteral("p78"));
    reopened->page(3)->addAnnotation(std::make_shared<PDFAnnotation>(QRectF(9, 9, 9, 9), PDFAnnotationSubtype::square));
    const QByteArray updated = reopened->dataRepresentation();
    EXPECT_TRUE(updated.startsWith(after));
    EXPECT_EQ(PdfPrograms::complaints(updated), "");
    EXPECT_EQ(PDFDocument::fromData(updated)->page(3)->annotations().size(), 6U);
}

TEST(WriterTakingOverTest, WholeFilesThatArePutTogetherKeepTheirOwnLinks) {
    struct {
        const char* name;
        QByteArray link;
        QByteArray action;
        int strings;    ///< of the whole copy
        int structures; ///< those of the file that it starts from
    } const kinds[] = {
        {"an action of its own", "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A 11 0 R /P 3 0 R /StructParent 3 >>",
         "<< /S /GoTo /D [4 0 R /Fit] /Next 12 0 R /Back 10 0 R >>", 2, 2},
        // Each of the pages that are brought in has its own, and the file itself refers to one more.
        {"a plain one",
         "<< /Type /Annot /Subtype /Link /Rect [0 0 9 9] /A << /D [4 0 R /Fit] /S /GoTo >> /NM (4 0 R\\)2 0 R) >>",
         "<< /Back 10 0 R >>", 4, 1},
    };
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const QByteArray file = fileWith(
            {{{{10, kind.link}, {11, kind.action}, {12, "<< /S /URI /URI (4 0 R\\)2 0 R) /StructParents 1 >>"}}}});
        PDFDocument merged;
        for (int copy = 0; copy < 2; ++copy) {
            const auto document = PDFDocument::fromData(file);
            for (int i = 0; i < 2; ++i)
                merged.insert(document->page(i)->copy(), merged.pageCount());
        }
        const QByteArray after = merged.dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(after), "");
        EXPECT_LE(after.count("/GoTo"), 1) << "what is brought in is packed";
        const QByteArray all = PdfPrograms::unpacked(after);
        EXPECT_EQ(all.count("(4 0 R\\)2 0 R)"), kind.strings);
        EXPECT_EQ(all.count("/StructParent"), kind.structures);
        const auto reopened = PDFDocument::fromData(after);
        ASSERT_EQ(reopened->pageCount(), 4);
        for (int i = 0; i < 4; ++i) {
            const auto annotations = reopened->page(i)->annotations();
            ASSERT_EQ(annotations.size(), 1U);
            ASSERT_TRUE(annotations[0]->destination());
            EXPECT_EQ(annotations[0]->destination()->page(), reopened->page(i / 2 * 2 + 1)) << i;
        }
    }
}

// What the tree says about its pages may be wrong, and its nodes may keep what only the removed page had.
TEST(WriterTakingOverTest, OddPageTreesAreMadeAnew) {
    const QByteArray gone = "<< /XObject << /GoneName 12 0 R >> >>";
    const std::pair<const char*, QByteArray> nodes[] = {
        {"a wrong count", "<< /Type /Pages /Count 7 /Kids [3 0 R 4 0 R] >>"},
        {"resources", "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /Resources " + gone + " >>"},
        {"a key of another program", "<< /Type /Pages /Count 2 /Kids [3 0 R 4 0 R] /GoneKey (GoneValue) >>"},
        {"a page twice", "<< /Type /Pages /Count 3 /Kids [3 0 R 4 0 R 4 0 R] >>"},
        {"no type", "<< /Count 2 /Kids [3 0 R 4 0 R] >>"},
    };
    for (const auto& [name, node] : nodes) {
        SCOPED_TRACE(name);
        const auto document = PDFDocument::fromData(fileWith({{{{10, note}, {11, "1"}, {12, "2"}}}}, node));
        while (document->pageCount() > 1)
            document->removePage(1);
        const QByteArray after = document->dataRepresentation();
        EXPECT_EQ(PdfPrograms::complaints(after), "");
        EXPECT_FALSE(PdfFixture::withStreamsInflated(after).contains("Gone"));
        const auto reopened = PDFDocument::fromData(after);
        EXPECT_FALSE(reopened->wasRepaired());
        ASSERT_EQ(reopened->pageCount(), 1);
        EXPECT_EQ(reopened->page(0)->string(), QStringLiteral("StaysText"));
    }
}
