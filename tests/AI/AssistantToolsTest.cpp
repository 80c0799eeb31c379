#include "AssistantTest.h"
#include "AssistantToolFactory.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "SystemPrompts.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>

#include <cmath>
#include <limits>

namespace {

QJsonObject object(const QByteArray& json) {
    return QJsonDocument::fromJson(json).object();
}

/// Names with schemas, in order.
QByteArray schemas(const AssistantSource& source) {
    QJsonArray list;
    for (const AssistantTool& tool : AssistantToolFactory::makeTools(source))
        list.append(QJsonArray{tool.name, tool.inputSchema});
    return QJsonDocument(list).toJson(QJsonDocument::Compact);
}

QByteArray digest(const QString& text) {
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
}

QString run(const AssistantSource& source, const QString& name, const QJsonObject& input = {}) {
    for (const AssistantTool& tool : AssistantToolFactory::makeTools(source))
        if (tool.name == name)
            return tool.execute(input);
    ADD_FAILURE() << "no tool " << qPrintable(name);
    return {};
}

QString runText(const QString& text, const QString& name, const QJsonObject& input = {}) {
    return run(TextOnlyAssistantContext{QUrl(), text}, name, input);
}

class PDFToolsTest : public AssistantTest {
protected:
    QString run(const QString& name, const QByteArray& input = "{}") { return ::run(context(), name, object(input)); }
    static void prepare(const AssistantTool& tool, const QJsonObject& input = {}) {
        const auto task = tool.prepare(input);
        EXPECT_TRUE(QTest::qWaitFor([&task] { return task.isReady(); }, 10'000));
    }
    QString documentTextOf(const QList<QStringList>& pages) {
        PdfFixture fixture;
        for (const QStringList& lines : pages)
            fixture.addPage(lines, {20'000, 20'000});
        openWindow(PDFDocument::fromData(fixture.bytes()));
        return run(u"get_document_text"_qs);
    }
};

} // namespace

TEST_F(PDFToolsTest, ModelIsToldOfTheToolsInTheAgreedWords) {
    EXPECT_EQ(schemas(context()),
              R"([["go_to_page",{"properties":{"page":{"type":"integer"}},"required":["page"],"type":"object"}],)"
              R"(["go_to_section",{"properties":{"title":{"type":"string"}},"required":["title"],"type":"object"}],)"
              R"(["get_selection_text",{"properties":{},"type":"object"}],)"
              R"(["get_page_text",{"properties":{"page":{"type":"integer"}},"type":"object"}],)"
              R"(["get_document_text",{"properties":{},"type":"object"}],)"
              R"(["search_document",{"properties":{"query":{"type":"string"}},"required":["query"],"type":"object"}],)"
              R"(["add_note",{"properties":{"page":{"type":"integer"},"text":{"type":"string"}},)"
              R"("required":["page","text"],"type":"object"}]])");
    EXPECT_EQ(schemas(TextOnlyAssistantContext()),
              R"([["get_full_text",{"properties":{},"type":"object"}],)"
              R"(["search_text",{"properties":{"query":{"type":"string"}},"required":["query"],"type":"object"}]])");
    QString descriptions;
    for (const AssistantSource& source : {AssistantSource(context()), AssistantSource(TextOnlyAssistantContext())})
        for (const AssistantTool& tool : AssistantToolFactory::makeTools(source))
            descriptions += tool.description + u'\n';
    // These texts were weighed word by word: a slip of the keyboard in one must show.
    EXPECT_EQ(digest(descriptions), "37f63126c0d95673");
    EXPECT_EQ(digest(SystemPrompts::pdf()), "1fde6ed9a261ee45");
    EXPECT_EQ(digest(SystemPrompts::textOnly()), "5be828204e706c53");
}

TEST_F(PDFToolsTest, AnswersEveryInputWithText) {
    const QByteArray megabyte(1 << 20, 'm');
    const struct {
        QString tool;
        QByteArray input;
        QString result;
    } cases[] = {
        {u"go_to_page"_qs, "{}", u"Missing or invalid 'page' argument."_qs},
        {u"go_to_page"_qs, R"({"page":"2"})", u"Missing or invalid 'page' argument."_qs},
        {u"go_to_page"_qs, R"({"page":true})", u"Missing or invalid 'page' argument."_qs},
        {u"go_to_page"_qs, R"({"page":[1]})", u"Missing or invalid 'page' argument."_qs},
        {u"go_to_page"_qs, R"({"page":0})", u"Page 0 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":0.9})", u"Page 0 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":-2.9})", u"Page -2 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":4})", u"Page 4 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":4294967297})", u"Page 4294967297 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":1e300})",
         u"Page 9223372036854775807 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":-1e300})",
         u"Page -9223372036854775808 is out of range. This document has 3 pages."_qs},
        {u"go_to_page"_qs, R"({"page":2.9})", u"Navigated to page 2."_qs},
        {u"go_to_section"_qs, R"({"title":7})", u"Missing 'title' argument."_qs},
        {u"go_to_section"_qs, R"({"title":"the dog"})", u"Navigated to section 'The Dog'."_qs},
        {u"go_to_section"_qs, R"({"title":"%1 %2"})",
         u"No section title closely matches '%1 %2'. Available sections: Getting Started;   Setup; The Dog"_qs},
        {u"get_selection_text"_qs, R"({"page":1})", u"No text is currently selected."_qs},
        {u"get_page_text"_qs, R"({"page":1})", u"The Quick fox\nsecond line"_qs},
        {u"get_page_text"_qs, R"({"page":2})", u"Page 2 has no extractable text."_qs},
        {u"get_page_text"_qs, R"({"page":"2"})", u"about the lazy dog"_qs}, // of the page that is shown
        {u"get_page_text"_qs, R"({"page":-1})", u"Page -1 is out of range. This document has 3 pages."_qs},
        {u"get_document_text"_qs, R"({"page":2})",
         u"--- Page 1 of 3 ---\nThe Quick fox\nsecond line\n\n--- Page 2 of 3 ---\n(no extractable text)\n\n"
         u"--- Page 3 of 3 ---\nabout the lazy dog\n\n"_qs},
        {u"search_document"_qs, "{}", u"Missing 'query' argument."_qs},
        {u"search_document"_qs, R"({"query":""})", u"Missing 'query' argument."_qs},
        {u"search_document"_qs, R"({"query":null})", u"Missing 'query' argument."_qs},
        {u"search_document"_qs, R"({"query":"THE"})",
         u"Page 1: …The Quick fox second line…\nPage 3: …about the lazy dog…"_qs},
        {u"search_document"_qs, R"({"query":"%1"})", u"No matches found for '%1'."_qs},
        {u"search_document"_qs, R"({"query":")" + megabyte + R"("})",
         u"No matches found for '"_qs + QString::fromLatin1(megabyte) + u"'."_qs},
        {u"add_note"_qs, R"({"page":1})", u"Missing 'page' or 'text' argument."_qs},
        {u"add_note"_qs, R"({"page":"1","text":"x"})", u"Missing 'page' or 'text' argument."_qs},
        {u"add_note"_qs, R"({"page":1,"text":1})", u"Missing 'page' or 'text' argument."_qs},
        {u"add_note"_qs, R"({"page":9,"text":""})", u"Page 9 is out of range."_qs},
        {u"add_note"_qs, R"({"page":1,"text":""})", u"Added a note on page 1."_qs},
    };
    for (const auto& [tool, input, result] : cases)
        EXPECT_EQ(run(tool, input), result) << qPrintable(tool) << input.left(100).constData();
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(::run(context(), u"go_to_page"_qs, {{u"page"_qs, odd}}).startsWith(u"Navigated"));
}

TEST_F(PDFToolsTest, MovesTheViewerAndWritesOnThePage) {
    run(u"go_to_page"_qs, R"({"page":3})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    run(u"go_to_section"_qs, R"({"title":"setup"})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 1);
    run(u"add_note"_qs, R"({"page":3,"text":"look here"})");
    ASSERT_EQ(m_document->page(2)->annotations().size(), 1U);
    EXPECT_EQ(m_document->page(2)->annotations().front()->contents(), u"look here"_qs);
    m_view->setCurrentSelection(m_document->page(2)->selectAll());
    EXPECT_EQ(run(u"get_selection_text"_qs), u"about the lazy dog"_qs);
}

TEST_F(PDFToolsTest, OutlivesItsWindow) {
    const auto tools = AssistantToolFactory::makeTools(context());
    closeWindow();
    const auto execute = [&tools](int index, const QByteArray& input) {
        return tools.at(static_cast<std::size_t>(index)).execute(object(input));
    };
    EXPECT_EQ(execute(0, R"({"page":2})"), u"Navigated to page 2."_qs);
    EXPECT_EQ(execute(1, R"({"title":"setup"})"), u"Navigated to section '  Setup'."_qs);
    EXPECT_EQ(execute(2, "{}"), u"No text is currently selected."_qs);
    EXPECT_EQ(execute(3, "{}"), u"No page is currently open to use as \"this page\"."_qs);
    EXPECT_EQ(execute(5, R"({"query":"dog"})"), u"Page 3: …about the lazy dog…"_qs);
    EXPECT_EQ(execute(6, R"({"page":1,"text":"x"})"), u"Viewer is not available."_qs);
}

TEST_F(PDFToolsTest, CutsALongDocumentOnlyBetweenPages) {
    const QString line(700, u'a');
    const QStringList lines(100, line); // 70,099 characters with the newlines
    const QString whole = lines.join(u'\n');
    EXPECT_EQ(documentTextOf({lines}), u"--- Page 1 of 1 ---\n"_qs + whole + u"\n\n"_qs);
    const QString note = u"\n\n[Truncated — document is longer than fits in one call. Use get_page_text or "
                         u"search_document for anything past this point.]"_qs;
    EXPECT_EQ(documentTextOf({lines, {u"next"_qs}}), (u"--- Page 1 of 2 ---\n"_qs + whole).left(60'000) + note);
    openWindow(std::make_shared<PDFDocument>());
    EXPECT_EQ(run(u"get_document_text"_qs), QString());
    EXPECT_EQ(run(u"go_to_section"_qs, R"({"title":"x"})"),
              u"This document has no table of contents to navigate by. Try go_to_page or search_document instead."_qs);
}

TEST_F(PDFToolsTest, ReadsAheadOnlyWhatStillHolds) {
    const auto tools = AssistantToolFactory::makeTools(context());
    const AssistantTool& search = tools.at(5);
    const QJsonObject dog = object(R"({"query":"dog"})");
    prepare(search, dog);
    prepare(search, object(R"({"query":5})"));
    EXPECT_EQ(search.execute(dog), u"Page 3: …about the lazy dog…"_qs);
    m_document->removePage(0);
    EXPECT_EQ(search.execute(dog), u"Page 2: …about the lazy dog…"_qs);

    const auto changedMeanwhile = search.prepare(dog);
    m_document->removePage(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return changedMeanwhile.isReady(); }, 10'000));
    EXPECT_EQ(search.execute(dog), u"Page 1: …about the lazy dog…"_qs);
}

TEST_F(PDFToolsTest, ReadsALongSelectionAhead) {
    QList<QStringList> pages;
    for (int i = 1; i <= 8; ++i)
        pages.append({u"page %1"_qs.arg(i), u"end"_qs});
    documentTextOf(pages);
    const AssistantTool selection = AssistantToolFactory::makeTools(context()).at(2);
    m_view->selectAll();
    prepare(selection);
    const QString all = selection.execute({});
    EXPECT_EQ(all, m_view->currentSelection()->string());
    EXPECT_TRUE(all.endsWith(u"end\npage 8\nend"_qs));
    prepare(selection);
    m_view->setCurrentSelection(m_document->page(1)->selectAll());
    EXPECT_EQ(selection.execute({}), u"page 2\nend"_qs);
    m_view->clearSelection();
    EXPECT_EQ(selection.execute({}), u"No text is currently selected."_qs);
}

TEST(TextOnlyToolsTest, CutsAndSearchesTheText) {
    EXPECT_EQ(runText({}, u"get_full_text"_qs), QString());
    EXPECT_EQ(runText(QString(60'000, u'x'), u"get_full_text"_qs), QString(60'000, u'x'));
    EXPECT_EQ(runText(u"é"_qs.repeated(60'001), u"get_full_text"_qs),
              u"é"_qs.repeated(60'000) + u"\n\n[Truncated — document is longer than fits in one call. Use search_text "
                                         u"for anything past this point.]"_qs);

    const QString search = u"search_text"_qs;
    EXPECT_EQ(runText(u"x"_qs, search, object(R"({"query":["x"]})")), u"Missing 'query' argument."_qs);
    EXPECT_EQ(runText({}, search, object(R"({"query":"x"})")), u"No matches found for 'x'."_qs);
    EXPECT_EQ(runText(u"A Needle\nhere"_qs, search, object(R"({"query":"nEEDLE"})")), u"…A Needle\nhere…"_qs);
    EXPECT_EQ(runText(u"aaaaaaaaaaaa"_qs, search, object(R"({"query":"aa"})")).count(u'\n'), 4) << "five, not six";
    // Every letter is one longer in lower case: the hit lies behind the end of the text.
    EXPECT_EQ(runText(u"İ"_qs.repeated(100) + u"x"_qs, search, object(R"({"query":"x"})")),
              u"…"_qs + u"İ"_qs.repeated(59) + u"x…"_qs);
    const QString text = QString(70, u'a') + u"Needle\nneedle"_qs + QString(70, u'b');
    EXPECT_EQ(runText(text, search, object(R"({"query":"needle"})")),
              u"…"_qs + QString(60, u'a') + u"Needle\nneedle"_qs + QString(53, u'b') + u"…\n…"_qs + QString(53, u'a') +
                  u"Needle\nneedle"_qs + QString(60, u'b') + u"…"_qs);
}
