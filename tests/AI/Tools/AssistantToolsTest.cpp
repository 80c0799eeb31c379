#include "AssistantTest.h"
#include "AssistantToolFactory.h"
#include "PDFAnnotation.h"
#include "PDFPage.h"
#include "PDFSelection.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

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

std::string run(const AssistantSource& source, const char* name, const QByteArray& input = "{}") {
    for (const AssistantTool& tool : AssistantToolFactory::makeTools(source))
        if (tool.name == QLatin1String(name))
            return tool.execute(object(input)).toStdString();
    ADD_FAILURE() << "no tool " << name;
    return {};
}

class PDFToolsTest : public AssistantTest {
protected:
    std::string run(const char* name, const QByteArray& input = "{}") { return ::run(context(), name, input); }
    static void prepare(const AssistantTool& tool, const QJsonObject& input = {}) {
        const auto task = tool.prepare(input);
        EXPECT_TRUE(QTest::qWaitFor([&task] { return task.isReady(); }, 10'000));
    }
    std::string documentTextOf(const QList<QStringList>& pages) {
        PdfFixture fixture;
        for (const QStringList& lines : pages)
            fixture.addPage(lines, {20'000, 20'000});
        openWindow(PDFDocument::fromData(fixture.bytes()));
        return run("get_document_text");
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
}

TEST_F(PDFToolsTest, AnswersEveryInputWithText) {
    const std::string noPage = "Missing or invalid 'page' argument.";
    const std::string noNote = "Missing 'page' or 'text' argument.";
    const std::tuple<const char*, QByteArray, std::string> cases[] = {
        {"go_to_page", "{}", noPage},
        {"go_to_page", R"({"page":true})", noPage},
        {"go_to_page", R"({"page":-2.9})", "Page -2 is out of range. This document has 3 pages."},
        {"go_to_page", R"({"page":4})", "Page 4 is out of range. This document has 3 pages."},
        {"go_to_page", R"({"page":4294967297})", "Page 4294967297 is out of range. This document has 3 pages."},
        {"go_to_page", R"({"page":1e300})", "Page 9223372036854775807 is out of range. This document has 3 pages."},
        {"go_to_page", R"({"page":2.9})", "Navigated to page 2."},
        {"go_to_section", R"({"title":7})", "Missing 'title' argument."},
        {"go_to_section", R"({"title":"the dog"})", "Navigated to section 'The Dog'."},
        {"go_to_section", R"({"title":"%1 %2"})",
         "No section title closely matches '%1 %2'. Available sections: Getting Started;   Setup; Deep; The Dog"},
        {"get_selection_text", R"({"page":1})", "No text is currently selected."},
        {"get_page_text", R"({"page":1})", "The Quick fox\nsecond line"},
        {"get_page_text", R"({"page":2})", "Page 2 has no extractable text."},
        {"get_page_text", R"({"page":"2"})", "about the lazy dog"}, // of the page that is shown
        {"get_document_text", R"({"page":2})",
         "--- Page 1 of 3 ---\nThe Quick fox\nsecond line\n\n--- Page 2 of 3 ---\n(no extractable text)\n\n"
         "--- Page 3 of 3 ---\nabout the lazy dog\n\n"},
        {"search_document", R"({"query":""})", "Missing 'query' argument."},
        {"search_document", R"({"query":"THE"})", "Page 1: …The Quick fox second line…\nPage 3: …about the lazy dog…"},
        {"search_document", R"({"query":"%1"})", "No matches found for '%1'."},
        {"add_note", R"({"page":"1","text":"x"})", noNote},
        {"add_note", R"({"page":1,"text":1})", noNote},
        {"add_note", R"({"page":9,"text":""})", "Page 9 is out of range."},
        {"add_note", R"({"page":1,"text":""})", "Added a note on page 1."},
    };
    for (const auto& [tool, input, result] : cases)
        EXPECT_EQ(run(tool, input), result) << tool << input.constData();
}

TEST_F(PDFToolsTest, MovesTheViewerAndWritesOnThePageUntilItsWindowGoes) {
    run("go_to_page", R"({"page":3})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    run("go_to_section", R"({"title":"setup"})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 1);
    run("add_note", R"({"page":3,"text":"look here"})");
    ASSERT_EQ(m_document->page(2)->annotations().size(), 1U);
    EXPECT_EQ(m_document->page(2)->annotations().front()->contents(), QStringLiteral("look here"));
    m_view->setCurrentSelection(m_document->page(2)->selectAll());
    EXPECT_EQ(run("get_selection_text"), "about the lazy dog");

    const auto tools = AssistantToolFactory::makeTools(context());
    closeWindow();
    const std::pair<const char*, const char*> results[] = {{R"({"page":2})", "Navigated to page 2."},
                                                           {R"({"title":"setup"})", "Navigated to section '  Setup'."},
                                                           {"{}", "No text is currently selected."},
                                                           {"{}", "No page is currently open to use as \"this page\"."},
                                                           {"{}", "--- Page 1 of 3"},
                                                           {R"({"query":"dog"})", "Page 3: …about the lazy dog…"},
                                                           {R"({"page":1,"text":"x"})", "Viewer is not available."}};
    for (std::size_t i = 0; i < std::size(results); ++i) {
        const auto& [input, result] = results[i];
        EXPECT_TRUE(tools.at(i).execute(object(input)).startsWith(QString::fromUtf8(result))) << result;
    }
}

TEST_F(PDFToolsTest, CutsALongDocumentOnlyBetweenPages) {
    const QStringList lines(100, QString(601, u'a')); // 60,199 characters with the newlines
    const std::string whole = lines.join(u'\n').toStdString();
    EXPECT_EQ(documentTextOf({lines}), "--- Page 1 of 1 ---\n" + whole + "\n\n");
    EXPECT_EQ(documentTextOf({lines, {QStringLiteral("next")}}),
              ("--- Page 1 of 2 ---\n" + whole).substr(0, 60'000) +
                  "\n\n[Truncated — document is longer than fits in one call. Use get_page_text or search_document "
                  "for anything past this point.]");
    openWindow(std::make_shared<PDFDocument>());
    EXPECT_EQ(run("get_document_text"), "");
    EXPECT_EQ(run("go_to_section", R"({"title":"x"})"),
              "This document has no table of contents to navigate by. Try go_to_page or search_document instead.");
}

TEST_F(PDFToolsTest, ReadsAheadOnlyWhatStillHolds) {
    const auto tools = AssistantToolFactory::makeTools(context());
    const AssistantTool& search = tools.at(5);
    const QJsonObject dog = object(R"({"query":"dog"})");
    const auto found = [&] { return search.execute(dog).toStdString(); };
    prepare(search, dog);
    EXPECT_EQ(found(), "Page 3: …about the lazy dog…");
    m_document->removePage(0);
    EXPECT_EQ(found(), "Page 2: …about the lazy dog…");
    const auto changedMeanwhile = search.prepare(dog);
    m_document->removePage(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return changedMeanwhile.isReady(); }, 10'000));
    EXPECT_EQ(found(), "Page 1: …about the lazy dog…");

    QList<QStringList> pages;
    for (int i = 1; i <= 8; ++i)
        pages.append({QStringLiteral("page %1").arg(i), QStringLiteral("end")});
    documentTextOf(pages);
    const AssistantTool selection = AssistantToolFactory::makeTools(context()).at(2);
    m_view->selectAll();
    prepare(selection);
    const QString all = selection.execute({});
    EXPECT_EQ(all, m_view->currentSelection()->string());
    EXPECT_TRUE(all.endsWith(QStringLiteral("end\npage 8\nend")));
    m_view->setCurrentSelection(m_document->page(1)->selectAll());
    EXPECT_EQ(selection.execute({}), QStringLiteral("page 2\nend"));
    m_view->clearSelection();
    EXPECT_EQ(selection.execute({}), QStringLiteral("No text is currently selected."));
}

TEST(TextOnlyToolsTest, CutsAndSearchesTheText) {
    const auto fullText = [](const QString& text) {
        return run(TextOnlyAssistantContext{QUrl(), text}, "get_full_text");
    };
    EXPECT_EQ(fullText(QString(60'000, u'x')).size(), 60'000U);
    EXPECT_EQ(fullText(QString(60'001, u'x')),
              std::string(60'000, 'x') + "\n\n[Truncated — document is longer than fits in one call. Use search_text "
                                         "for anything past this point.]");

    const QString letters(70, u'a');
    const QString a60(60, u'a');
    const std::tuple<QString, const char*, QString> searches[] = {
        {QStringLiteral("x"), R"({"query":["x"]})", QStringLiteral("Missing 'query' argument.")},
        {{}, R"({"query":"x"})", QStringLiteral("No matches found for 'x'.")},
        {QStringLiteral("A Needle\nhere"), R"({"query":"nEEDLE"})", QStringLiteral("…A Needle\nhere…")},
        // Every letter is one longer in lower case: the hit lies behind the end of the text.
        {QStringLiteral("İ").repeated(100) + u'x', R"({"query":"x"})",
         u'…' + QStringLiteral("İ").repeated(59) + QStringLiteral("x…")},
        {letters + QStringLiteral("Needle") + letters, R"({"query":"needle"})",
         u'…' + a60 + QStringLiteral("Needle") + a60 + u'…'},
    };
    for (const auto& [text, input, result] : searches)
        EXPECT_EQ(run(TextOnlyAssistantContext{QUrl(), text}, "search_text", input), result.toStdString()) << input;
    const std::string many = run(TextOnlyAssistantContext{QUrl(), letters}, "search_text", R"({"query":"aa"})");
    EXPECT_EQ(std::count(many.begin(), many.end(), '\n'), 4) << "five, not more";
}
