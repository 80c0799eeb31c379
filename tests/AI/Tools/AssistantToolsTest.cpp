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
        return run(QStringLiteral("get_document_text"));
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
        {QStringLiteral("go_to_page"), "{}", QStringLiteral("Missing or invalid 'page' argument.")},
        {QStringLiteral("go_to_page"), R"({"page":"2"})", QStringLiteral("Missing or invalid 'page' argument.")},
        {QStringLiteral("go_to_page"), R"({"page":true})", QStringLiteral("Missing or invalid 'page' argument.")},
        {QStringLiteral("go_to_page"), R"({"page":[1]})", QStringLiteral("Missing or invalid 'page' argument.")},
        {QStringLiteral("go_to_page"), R"({"page":0})",
         QStringLiteral("Page 0 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":0.9})",
         QStringLiteral("Page 0 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":-2.9})",
         QStringLiteral("Page -2 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":4})",
         QStringLiteral("Page 4 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":4294967297})",
         QStringLiteral("Page 4294967297 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":1e300})",
         QStringLiteral("Page 9223372036854775807 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":-1e300})",
         QStringLiteral("Page -9223372036854775808 is out of range. This document has 3 pages.")},
        {QStringLiteral("go_to_page"), R"({"page":2.9})", QStringLiteral("Navigated to page 2.")},
        {QStringLiteral("go_to_section"), R"({"title":7})", QStringLiteral("Missing 'title' argument.")},
        {QStringLiteral("go_to_section"), R"({"title":"the dog"})", QStringLiteral("Navigated to section 'The Dog'.")},
        {QStringLiteral("go_to_section"), R"({"title":"%1 %2"})",
         QStringLiteral(
             "No section title closely matches '%1 %2'. Available sections: Getting Started;   Setup; The Dog")},
        {QStringLiteral("get_selection_text"), R"({"page":1})", QStringLiteral("No text is currently selected.")},
        {QStringLiteral("get_page_text"), R"({"page":1})", QStringLiteral("The Quick fox\nsecond line")},
        {QStringLiteral("get_page_text"), R"({"page":2})", QStringLiteral("Page 2 has no extractable text.")},
        {QStringLiteral("get_page_text"), R"({"page":"2"})",
         QStringLiteral("about the lazy dog")}, // of the page that is shown
        {QStringLiteral("get_page_text"), R"({"page":-1})",
         QStringLiteral("Page -1 is out of range. This document has 3 pages.")},
        {QStringLiteral("get_document_text"), R"({"page":2})",
         QStringLiteral(
             "--- Page 1 of 3 ---\nThe Quick fox\nsecond line\n\n--- Page 2 of 3 ---\n(no extractable text)\n\n"
             "--- Page 3 of 3 ---\nabout the lazy dog\n\n")},
        {QStringLiteral("search_document"), "{}", QStringLiteral("Missing 'query' argument.")},
        {QStringLiteral("search_document"), R"({"query":""})", QStringLiteral("Missing 'query' argument.")},
        {QStringLiteral("search_document"), R"({"query":null})", QStringLiteral("Missing 'query' argument.")},
        {QStringLiteral("search_document"), R"({"query":"THE"})",
         QStringLiteral("Page 1: …The Quick fox second line…\nPage 3: …about the lazy dog…")},
        {QStringLiteral("search_document"), R"({"query":"%1"})", QStringLiteral("No matches found for '%1'.")},
        {QStringLiteral("search_document"), R"({"query":")" + megabyte + R"("})",
         QStringLiteral("No matches found for '") + QString::fromLatin1(megabyte) + QStringLiteral("'.")},
        {QStringLiteral("add_note"), R"({"page":1})", QStringLiteral("Missing 'page' or 'text' argument.")},
        {QStringLiteral("add_note"), R"({"page":"1","text":"x"})",
         QStringLiteral("Missing 'page' or 'text' argument.")},
        {QStringLiteral("add_note"), R"({"page":1,"text":1})", QStringLiteral("Missing 'page' or 'text' argument.")},
        {QStringLiteral("add_note"), R"({"page":9,"text":""})", QStringLiteral("Page 9 is out of range.")},
        {QStringLiteral("add_note"), R"({"page":1,"text":""})", QStringLiteral("Added a note on page 1.")},
    };
    for (const auto& [tool, input, result] : cases)
        EXPECT_EQ(run(tool, input), result) << qPrintable(tool) << input.left(100).constData();
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_FALSE(
            ::run(context(), QStringLiteral("go_to_page"), {{QStringLiteral("page"), odd}}).startsWith(u"Navigated"));
}

TEST_F(PDFToolsTest, MovesTheViewerAndWritesOnThePage) {
    run(QStringLiteral("go_to_page"), R"({"page":3})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 2);
    run(QStringLiteral("go_to_section"), R"({"title":"setup"})");
    EXPECT_EQ(m_coordinator->currentPageIndex(), 1);
    run(QStringLiteral("add_note"), R"({"page":3,"text":"look here"})");
    ASSERT_EQ(m_document->page(2)->annotations().size(), 1U);
    EXPECT_EQ(m_document->page(2)->annotations().front()->contents(), QStringLiteral("look here"));
    m_view->setCurrentSelection(m_document->page(2)->selectAll());
    EXPECT_EQ(run(QStringLiteral("get_selection_text")), QStringLiteral("about the lazy dog"));
}

TEST_F(PDFToolsTest, OutlivesItsWindow) {
    const auto tools = AssistantToolFactory::makeTools(context());
    closeWindow();
    const auto execute = [&tools](int index, const QByteArray& input) {
        return tools.at(static_cast<std::size_t>(index)).execute(object(input));
    };
    EXPECT_EQ(execute(0, R"({"page":2})"), QStringLiteral("Navigated to page 2."));
    EXPECT_EQ(execute(1, R"({"title":"setup"})"), QStringLiteral("Navigated to section '  Setup'."));
    EXPECT_EQ(execute(2, "{}"), QStringLiteral("No text is currently selected."));
    EXPECT_EQ(execute(3, "{}"), QStringLiteral("No page is currently open to use as \"this page\"."));
    EXPECT_EQ(execute(5, R"({"query":"dog"})"), QStringLiteral("Page 3: …about the lazy dog…"));
    EXPECT_EQ(execute(6, R"({"page":1,"text":"x"})"), QStringLiteral("Viewer is not available."));
}

TEST_F(PDFToolsTest, CutsALongDocumentOnlyBetweenPages) {
    const QString line(601, u'a');
    const QStringList lines(100, line); // 60,199 characters with the newlines
    const QString whole = lines.join(u'\n');
    EXPECT_EQ(documentTextOf({lines}), QStringLiteral("--- Page 1 of 1 ---\n") + whole + QStringLiteral("\n\n"));
    const QString note =
        QStringLiteral("\n\n[Truncated — document is longer than fits in one call. Use get_page_text or "
                       "search_document for anything past this point.]");
    EXPECT_EQ(documentTextOf({lines, {QStringLiteral("next")}}),
              (QStringLiteral("--- Page 1 of 2 ---\n") + whole).left(60'000) + note);
    openWindow(std::make_shared<PDFDocument>());
    EXPECT_EQ(run(QStringLiteral("get_document_text")), QString());
    EXPECT_EQ(run(QStringLiteral("go_to_section"), R"({"title":"x"})"),
              QStringLiteral(
                  "This document has no table of contents to navigate by. Try go_to_page or search_document instead."));
}

TEST_F(PDFToolsTest, ReadsAheadOnlyWhatStillHolds) {
    const auto tools = AssistantToolFactory::makeTools(context());
    const AssistantTool& search = tools.at(5);
    const QJsonObject dog = object(R"({"query":"dog"})");
    prepare(search, dog);
    prepare(search, object(R"({"query":5})"));
    EXPECT_EQ(search.execute(dog), QStringLiteral("Page 3: …about the lazy dog…"));
    m_document->removePage(0);
    EXPECT_EQ(search.execute(dog), QStringLiteral("Page 2: …about the lazy dog…"));

    const auto changedMeanwhile = search.prepare(dog);
    m_document->removePage(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return changedMeanwhile.isReady(); }, 10'000));
    EXPECT_EQ(search.execute(dog), QStringLiteral("Page 1: …about the lazy dog…"));
}

TEST_F(PDFToolsTest, ReadsALongSelectionAhead) {
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
    prepare(selection);
    m_view->setCurrentSelection(m_document->page(1)->selectAll());
    EXPECT_EQ(selection.execute({}), QStringLiteral("page 2\nend"));
    m_view->clearSelection();
    EXPECT_EQ(selection.execute({}), QStringLiteral("No text is currently selected."));
}

TEST(TextOnlyToolsTest, CutsAndSearchesTheText) {
    EXPECT_EQ(runText({}, QStringLiteral("get_full_text")), QString());
    EXPECT_EQ(runText(QString(60'000, u'x'), QStringLiteral("get_full_text")), QString(60'000, u'x'));
    EXPECT_EQ(runText(QStringLiteral("é").repeated(60'001), QStringLiteral("get_full_text")),
              QStringLiteral("é").repeated(60'000) +
                  QStringLiteral("\n\n[Truncated — document is longer than fits in one call. Use search_text "
                                 "for anything past this point.]"));

    const QString search = QStringLiteral("search_text");
    EXPECT_EQ(runText(QStringLiteral("x"), search, object(R"({"query":["x"]})")),
              QStringLiteral("Missing 'query' argument."));
    EXPECT_EQ(runText({}, search, object(R"({"query":"x"})")), QStringLiteral("No matches found for 'x'."));
    EXPECT_EQ(runText(QStringLiteral("A Needle\nhere"), search, object(R"({"query":"nEEDLE"})")),
              QStringLiteral("…A Needle\nhere…"));
    EXPECT_EQ(runText(QStringLiteral("aaaaaaaaaaaa"), search, object(R"({"query":"aa"})")).count(u'\n'), 4)
        << "five, not six";
    // Every letter is one longer in lower case: the hit lies behind the end of the text.
    EXPECT_EQ(runText(QStringLiteral("İ").repeated(100) + QStringLiteral("x"), search, object(R"({"query":"x"})")),
              QStringLiteral("…") + QStringLiteral("İ").repeated(59) + QStringLiteral("x…"));
    const QString text = QString(70, u'a') + QStringLiteral("Needle\nneedle") + QString(70, u'b');
    EXPECT_EQ(runText(text, search, object(R"({"query":"needle"})")),
              QStringLiteral("…") + QString(60, u'a') + QStringLiteral("Needle\nneedle") + QString(53, u'b') +
                  QStringLiteral("…\n…") + QString(53, u'a') + QStringLiteral("Needle\nneedle") + QString(60, u'b') +
                  QStringLiteral("…"));
}
