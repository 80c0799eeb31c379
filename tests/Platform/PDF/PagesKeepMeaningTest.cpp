#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

const QString password = QStringLiteral("open");

/// A document whose pages are called by their words in all that they have and all that leads to them.
void fill(PdfFixture& pdf, const QStringList& words) {
    const QByteArray resources = pdf.defaultResources();
    for (const QString& word : words)
        pdf.addPage({word});
    std::vector<PdfFixture::OutlineItem> entries;
    for (int page = 0; page < int(words.size()); ++page) {
        const QString& word = words[page];
        const QByteArray bytes = word.toLatin1();
        const int next = (page + 1) % int(words.size());
        pdf.addNamedDestination("place " + bytes, page);
        pdf.addNamedDestination("place " + QByteArray::number(page), page); // which all documents use
        entries.push_back({QStringLiteral("entry ") + word, page, {{QStringLiteral("below ") + word, page}}});
        entries.push_back({QStringLiteral("named ") + word, -1, {}, "place " + bytes});
        pdf.addLink(page, {0, 0, 20, 20}, next);
        pdf.addNamedLink(page, {0, 30, 20, 20}, "place " + QByteArray::number(next));
        pdf.addAnnotation(page,
                          "<< /Subtype /Link /Rect [0 120 20 140] /Dest [" + QByteArray::number(next) + " /Fit] >>");
        pdf.addAnnotation(page, "<< /Subtype /Link /Rect [0 60 20 80] /A << /S /GoTo /D (place " +
                                    words[next].toLatin1() + ") /Next << /S /Named /N /Print >> >> >>");
        pdf.addTextField(page, QStringLiteral("own ") + word, {40, 40, 90, 20}, QStringLiteral("value ") + word);
        pdf.addLayer(page, QStringLiteral("layer ") + word, "", page % 2 == 0);
        pdf.addAnnotation(page, "<< /Subtype /FileAttachment /Rect [0 90 20 110] /Contents (note " + bytes +
                                    ") /FS << /Type /Filespec /F (f.txt) /EF << /F " +
                                    pdf.addStream("<< /Type /EmbeddedFile >>", "file " + bytes) + " >> >> >>");
    }
    pdf.setOutline(entries);
    pdf.addTextField(0, QStringLiteral("common"), {40, 140, 90, 20}, QStringLiteral("filled ") + words[0]);
    for (const char* name : {"signed", "stray"}) {
        const QByteArray field = pdf.addAnnotation(0, "<< /Subtype /Widget /FT /Sig /T (" + QByteArray(name) +
                                                          ") /Rect [0 0 9 9] /V << /Type /Sig /Contents "
                                                          "(SIGNATURE) >> >>");
        if (name == std::string("signed")) // and the form doesn't know of the other
            pdf.appendToArray(pdf.form(), "/Fields", field);
    }
    pdf.setPageLabels("0 << /S /r >> 2 << /S /D /P (" + words[0].left(1).toLatin1() + "-) >>");
    pdf.setPageKey(1, "/Rotate", "90");
    pdf.attach(QStringLiteral("whole.txt"), "attached");
    pdf.setInfo("/Title", QStringLiteral("Title ") + words[0]);
}

void addOutline(const QJsonArray& items, const QStringList& pages, QStringList& lines) {
    for (const QJsonValue item : items) {
        const int page = item[QLatin1String("destpageposfrom1")].toInt();
        lines += item[QLatin1String("title")].toString() + QStringLiteral(" > ") + pages.value(page - 1);
        addOutline(item[QLatin1String("kids")].toArray(), pages, lines);
    }
}

/// What a file says of its pages, line by line, each page by its word; mostly as other programs read it. `pages` gets
/// the words in order.
QStringList meaning(const QByteArray& file, QStringList& pages) {
    const auto document = PDFDocument::fromData(file);
    EXPECT_TRUE(document->unlock(password));
    QStringList lines;
    pages.clear();
    for (int i = 0; i < document->pageCount(); ++i)
        pages += document->page(i)->string().simplified();
    const QString given = document->isEncrypted() ? password : QString();
    EXPECT_EQ(PdfPrograms::complaints(file, given), "");
    const QStringList texts = PdfPrograms::text(file, 0, given).split(QLatin1Char('\f'));
    EXPECT_EQ(texts.size(), pages.size() + 1);
    for (int i = 0; i < int(pages.size()); ++i)
        EXPECT_TRUE(texts.value(i).trimmed().startsWith(pages[i])) << texts.value(i).toStdString();
    for (int i = 0; i < document->pageCount(); ++i) {
        const auto page = document->page(i);
        lines += pages[i] + QStringLiteral(" is called ") + page->label();
        lines += pages[i] + QStringLiteral(" turned ") + QString::number(page->rotation());
        for (const auto& annotation : page->annotations())
            if (const auto place = annotation->destination())
                lines += pages[i] + QStringLiteral(" links to ") + pages.value(document->index(place->page().get()));
    }
    const auto json = PdfPrograms::run(QStringLiteral("qpdf --json=1 FILE --password=") + given, file);
    const QJsonObject told = QJsonDocument::fromJson(json.output).object();
    addOutline(told[QLatin1String("outlines")].toArray(), pages, lines);
    for (const QJsonValue field : told[QLatin1String("acroform")][QLatin1String("fields")].toArray())
        lines += field[QLatin1String("fullname")].toString() + QStringLiteral(" = ") +
                 field[QLatin1String("value")].toString() + QStringLiteral(" on ") +
                 pages.value(field[QLatin1String("pageposfrom1")].toInt() - 1);
    const QByteArray all = PdfPrograms::unpacked(file, given);
    for (const QString& word : pages)
        for (const QString& of : {QStringLiteral("layer "), QStringLiteral("file "), QStringLiteral("note ")})
            if (all.contains((of + word).toLatin1()))
                lines += of + word;
    lines += document->documentAttributes().value(QStringLiteral("Title")).toString();
    if (all.contains("(whole.txt)"))
        lines += QStringLiteral("attachment");
    if (all.contains("SIGNATURE"))
        lines += QStringLiteral("signature");
    lines.sort();
    return lines;
}

/// Of the lines, those that speak of no page but these.
QStringList about(const QStringList& lines, const QStringList& all, const QStringList& pages) {
    QStringList kept;
    for (const QString& line : lines)
        if (std::all_of(all.begin(), all.end(), [&](const QString& word) {
                return pages.contains(word) || !line.contains(word) || line.startsWith(QLatin1String("Title"));
            }))
            kept += line;
    return kept;
}

std::string text(const QStringList& lines) {
    return lines.join(QLatin1Char('\n')).toStdString();
}

std::shared_ptr<PDFDocument> copyOf(const PDFDocument& document, const std::vector<int>& pages) {
    auto copy = std::make_shared<PDFDocument>();
    for (const int page : pages)
        copy->insert(document.page(page)->copy(), copy->pageCount());
    return copy;
}

const QStringList greek{QStringLiteral("Alpha"), QStringLiteral("Beta"), QStringLiteral("Gamma"),
                        QStringLiteral("Delta")};

class PagesKeepMeaningTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        const std::string kind = GetParam();
        PdfFixture pdf;
        fill(pdf, greek);
        m_file = kind == "encrypted" ? pdf.encrypted(password.toLatin1(), "owner", PdfFixture::Encryption::aes256)
                 : kind == "object streams" ? pdf.bytes(PdfFixture::Style::objectStreams)
                                            : pdf.bytes();
        m_document = opened(QStringLiteral("greek.pdf"), m_file);
        QStringList pages;
        m_before = meaning(m_file, pages);
        ASSERT_EQ(pages, greek);
    }
    static std::shared_ptr<PDFDocument> opened(const QString& name, const QByteArray& bytes) {
        QFile onDisk(QDir::temp().filePath(name));
        EXPECT_TRUE(onDisk.open(QIODevice::WriteOnly) && onDisk.write(bytes) == bytes.size());
        onDisk.close();
        auto result = PDFDocument::fromFile(onDisk.fileName());
        EXPECT_TRUE(result->unlock(password));
        return result;
    }

    QByteArray m_file;
    std::shared_ptr<PDFDocument> m_document;
    QStringList m_before;
};

} // namespace

TEST_P(PagesKeepMeaningTest, InTheirDocumentAndInCopies) {
    using Document = std::shared_ptr<PDFDocument>;
    struct Case {
        const char* what;
        void (*change)(PDFDocument& document);
        std::vector<int> pages; ///< that are there then, or are copied
        bool isCopy = false;
    };
    const Case cases[] = {
        {"moved", [](PDFDocument& d) { d.insert(d.removePage(3), 0); }, {3, 0, 1, 2}},
        {"removed", [](PDFDocument& d) { d.removePage(1); }, {0, 2, 3}},
        {"taken back",
         [](PDFDocument& d) {
             const auto page = d.removePage(1);
             EXPECT_EQ(d.outlineRoot()->numberOfChildren(), 8) << "read while the page is away";
             d.insert(page, 1);
             d.setOutlineRoot(d.outlineRoot());
         },
         {0, 1, 2, 3}},
        {"extracted", [](PDFDocument&) {}, {1, 3}, true},
        {"copied whole", [](PDFDocument&) {}, {0, 1, 2, 3}, true},
        {"extracted from what was edited",
         [](PDFDocument& d) {
             d.outlineRoot()->child(0)->setLabel(QStringLiteral("entry Alpha"));
             d.setOutlineRoot(d.outlineRoot());
             auto attributes = d.documentAttributes();
             attributes[QStringLiteral("Title")] = QStringLiteral("Title Alpha");
             attributes[QStringLiteral("Author")] = QStringLiteral("me");
             d.setDocumentAttributes(attributes);
         },
         {2, 0},
         true},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        QStringList left;
        for (const int page : each.pages)
            left += greek[page];
        auto live = opened(QStringLiteral("greek.pdf"), m_file);
        each.change(*live);
        const Document changed = each.isCopy ? copyOf(*live, each.pages) : live;
        live.reset(); // what copies need of it outlives it
        const QByteArray after = changed->dataRepresentation();
        QStringList pages;
        QStringList now = meaning(after, pages);
        EXPECT_EQ(pages, left);
        QStringList expected = about(m_before, greek, left);
        if (each.isCopy)
            expected.removeOne(QStringLiteral("signature"));
        EXPECT_EQ(text(now), text(expected));
        const QByteArray all = PdfPrograms::unpacked(after, m_document->isEncrypted() ? password : QString());
        for (const QString& word : greek)
            // The first stands in the title.
            EXPECT_TRUE(left.contains(word) || word == greek[0] || !all.contains(word.toLatin1()))
                << word.toStdString();
    }
}

TEST_P(PagesKeepMeaningTest, FewOfManyPages) {
    PdfFixture pdf;
    fill(pdf, greek);
    pdf.addPages(220, QStringLiteral("Rest"));
    const bool isProtected = m_document->isEncrypted();
    const QByteArray many = isProtected ? pdf.encrypted(password.toLatin1(), "owner", PdfFixture::Encryption::rc4)
                                        : pdf.bytes(PdfFixture::Style::objectStreams);
    const auto copy = copyOf(*opened(QStringLiteral("many.pdf"), many), {1, 3});
    QStringList pages;
    QStringList expected = about(m_before, greek, {greek[1], greek[3]});
    expected.removeOne(QStringLiteral("signature"));
    EXPECT_EQ(text(meaning(copy->dataRepresentation(), pages)), text(expected));
    EXPECT_LT(copy->dataRepresentation().size(), 20'000);
    const QByteArray all = PdfPrograms::unpacked(copy->dataRepresentation());
    for (int page = 0; page < 4; ++page)
        EXPECT_EQ(all.contains("(place " + greek[page].toLatin1() + ')'), page % 2 == 1) << "the names of places";
}

TEST_P(PagesKeepMeaningTest, InAnotherDocument) {
    const QStringList latin{QStringLiteral("Unus"), QStringLiteral("Duo"), QStringLiteral("Tres")};
    PdfFixture pdf;
    fill(pdf, latin);
    const QByteArray theirs = pdf.bytes(PdfFixture::Style::objectStreams);
    QStringList pages;
    const QStringList latinBefore = meaning(theirs, pages);
    const auto target = opened(QStringLiteral("latin.pdf"), theirs);
    const int entries = target->outlineRoot()->numberOfChildren();
    for (int i = 0; i < m_document->pageCount(); ++i)
        target->insert(m_document->page(i)->copy(), i + 1);
    m_document.reset();
    const auto entry = target->outlineRoot()->child(2);
    ASSERT_EQ(target->outlineRoot()->numberOfChildren(), entries + 1) << "one for the whole of the other file";
    EXPECT_EQ(entry->label(), QStringLiteral("greek.pdf"));
    EXPECT_EQ(entry->numberOfChildren(), 8);
    EXPECT_EQ(target->index(entry->destination()->page().get()), 1);

    EXPECT_EQ(target->page(1)->annotations().at(0)->destination()->page(), target->page(2)) << "before it is saved";
    QStringList expected = latinBefore + m_before;
    for (const char* ofThem : {"Title Alpha", "signature", "attachment"})
        expected.removeOne(QLatin1String(ofThem));
    expected += QStringLiteral("greek.pdf > Alpha");
    expected.replaceInStrings(QStringLiteral("common = filled Alpha"), QStringLiteral("common_2 = filled Alpha"));
    expected.replaceInStrings(QStringLiteral("signed =  on Alpha"), QStringLiteral("signed_2 =  on Alpha"));
    expected.replaceInStrings(QStringLiteral("stray =  on Alpha"), QStringLiteral("stray_2 =  on Alpha"));
    expected.sort();
    const QByteArray merged = target->dataRepresentation();
    QStringList now = meaning(merged, pages);
    EXPECT_EQ(text(pages), "Unus\nAlpha\nBeta\nGamma\nDelta\nDuo\nTres");
    EXPECT_EQ(text(now), text(expected));
    EXPECT_EQ(PdfPrograms::unpacked(merged).count("/N /Print"), 7) << "with all that links do";

    // Taken back, and brought in again.
    std::vector<std::shared_ptr<PDFPage>> removed;
    for (int i = 0; i < 4; ++i)
        removed.push_back(target->removePage(1));
    EXPECT_EQ(target->outlineRoot()->numberOfChildren(), entries);
    EXPECT_EQ(target->dataRepresentation(), theirs) << "nothing is left of it";
    for (int i = 0; i < 4; ++i)
        target->insert(removed[std::size_t(i)], i + 1);
    EXPECT_EQ(target->outlineRoot()->child(2), entry);
    EXPECT_EQ(text(meaning(target->dataRepresentation(), pages)), text(expected));

    // Both in a file of their own, of which neither is the document that it describes. It starts from the larger one.
    PDFDocument both;
    for (const auto& each : {opened(QStringLiteral("latin.pdf"), theirs), opened(QStringLiteral("greek.pdf"), m_file)})
        for (int i = 0; i < each->pageCount(); ++i)
            both.insert(each->page(i)->copy(), both.pageCount());
    EXPECT_EQ(both.outlineRoot()->numberOfChildren(), 2);
    for (const char* ofOne : {"Title Unus", "signature"})
        expected.removeOne(QLatin1String(ofOne));
    expected += {QString(), QStringLiteral("latin.pdf > Unus")};
    for (const char* name : {"common", "signed", "stray"})
        for (QString& line : expected)
            if (line.startsWith(QLatin1String(name)))
                line.replace(0, line.indexOf(QLatin1Char(' ')),
                             QLatin1String(name) + (line.endsWith(greek[0]) ? QString() : QStringLiteral("_2")));
    expected.sort();
    EXPECT_EQ(text(meaning(both.dataRepresentation(), pages)), text(expected));
}

INSTANTIATE_TEST_SUITE_P(Documents, PagesKeepMeaningTest, testing::Values("classic", "object streams", "encrypted"));

TEST(ImportedFormScripts, ComeWhereTheirNamesStillMeanTheSame) {
    struct Case {
        const char* what;
        QString fieldHere;     ///< that the document has already
        QByteArray scriptHere; ///< of the document
        bool pricesCome, ratesCome;
    };
    const Case cases[] = {
        {"nothing in the way", QStringLiteral("other"), "function other() {}", true, true},
        {"another field of that name", QStringLiteral("price"), "", false, true},
        {"another function of that name", QStringLiteral("other"), "function rate() { return 3 }", true, false},
        {"the same function", QStringLiteral("other"), "function rate() { return 'x' }", true, true},
    };
    const auto withScript = [](PdfFixture& pdf, const QByteArray& script) {
        pdf.setNamesKey("/JavaScript", "<< /Names [(script) << /S /JavaScript /JS " +
                                           PdfFixture::textString(QString::fromLatin1(script)) + " >>] >>");
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        PdfFixture form;
        form.addPage({QStringLiteral("Form")});
        form.addTextField(0, QStringLiteral("price"), {40, 40, 90, 20}, QStringLiteral("1"));
        const auto calculated = [&form](const QString& name, const QByteArray& script) {
            const QByteArray field =
                form.addTextField(0, name, {40, 80, 90, 20}, QStringLiteral("2"),
                                  "/AA << /C << /S /JavaScript /JS (event.value = " + script + ") >> >>");
            form.appendToArray(form.form(), "/CO", field);
        };
        calculated(QStringLiteral("total"), "this.getField\\(\"price\"\\).value * 2 // rate");
        calculated(QStringLiteral("share"), "rate\\(\\)");
        withScript(form, "function rate() { return 'x' }");

        PdfFixture here;
        here.addPage({QStringLiteral("Here")});
        here.addTextField(0, each.fieldHere, {40, 40, 90, 20}, QStringLiteral("0"));
        withScript(here, each.scriptHere);
        const auto target = PDFDocument::fromData(here.bytes());
        target->insert(PDFDocument::fromData(form.bytes())->page(0)->copy(), 1);
        const QByteArray merged = PdfPrograms::unpacked(target->dataRepresentation());
        EXPECT_EQ(merged.contains("value * 2"), each.pricesCome);
        EXPECT_EQ(merged.count("event.value = rate"), each.ratesCome ? 1 : 0);
        EXPECT_EQ(merged.count("return 'x'"), each.ratesCome ? 1 : 0);
        const qsizetype order = merged.indexOf("/CO [");
        EXPECT_EQ(merged.mid(order, merged.indexOf(']', order) - order).count(" 0 R"),
                  int(each.pricesCome) + int(each.ratesCome));
    }
}
