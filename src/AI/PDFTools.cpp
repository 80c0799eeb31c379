#include "PDFTools.h"

#include "AnnotatingPDFView.h"
#include "DocumentIndex.h"
#include "DocumentText.h"
#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFViewCoordinator.h"
#include "PreparedAnswers.h"
#include "SelectionReader.h"
#include "ToolArguments.h"
#include "ToolSchema.h"
#include "UserCharacters.h"

#include <algorithm>

namespace {

constexpr QLatin1String pageArgument("page");
constexpr QLatin1String titleArgument("title");
constexpr QLatin1String queryArgument("query");
constexpr QLatin1String textArgument("text");

/// Null once the window is closed.
AnnotatingPDFView* viewer(const AssistantContext& context) {
    return context.coordinator ? context.coordinator->pdfView() : nullptr;
}

/// Null when the document has no page of that number (1-based).
std::shared_ptr<PDFPage> pageOfNumber(const AssistantContext& context, qint64 number) {
    if (number < 1 || number > context.pdfDocument->pageCount())
        return nullptr;
    return context.pdfDocument->page(static_cast<int>(number - 1));
}

QString outOfRange(const AssistantContext& context, qint64 number) {
    return u"Page %1 is out of range. This document has %2 pages."_qs.arg(
        QString::number(number), QString::number(context.pdfDocument->pageCount()));
}

QString goToPage(const AssistantContext& context, const QJsonObject& input) {
    const std::optional<qint64> number = ToolArguments::integer(input, pageArgument);
    if (!number)
        return u"Missing or invalid 'page' argument."_qs;
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return outOfRange(context, *number);
    if (AnnotatingPDFView* const view = viewer(context))
        view->goToPage(page);
    return u"Navigated to page %1."_qs.arg(*number);
}

QString goToSection(const AssistantContext& context, const QJsonObject& input) {
    constexpr std::size_t listedTitles = 15;
    const std::optional<QString> title = ToolArguments::string(input, titleArgument);
    if (!title)
        return u"Missing 'title' argument."_qs;
    const std::vector<DocumentIndex::OutlineEntry> entries = DocumentIndex::flattenedOutline(*context.pdfDocument);
    if (entries.empty()) {
        return u"This document has no table of contents to navigate by. Try go_to_page or search_document "
               u"instead."_qs;
    }
    const std::optional<DocumentIndex::OutlineEntry> match = DocumentIndex::bestMatch(*title, entries);
    if (!match) {
        QStringList titles;
        for (std::size_t i = 0; i < std::min(entries.size(), listedTitles); ++i)
            titles.append(entries[i].title);
        return u"No section title closely matches '%1'. Available sections: %2"_qs.arg(*title, titles.join(u"; "_qs));
    }
    AnnotatingPDFView* const view = viewer(context);
    if (view && match->outline->destination())
        view->goToDestination(*match->outline->destination());
    return u"Navigated to section '%1'."_qs.arg(match->title);
}

QString selectionText(const SelectionReader& selection) {
    const QString text = selection.text();
    return text.isEmpty() ? u"No text is currently selected."_qs : text;
}

QString pageText(const AssistantContext& context, const QJsonObject& input) {
    std::optional<qint64> number = ToolArguments::integer(input, pageArgument);
    if (!number) {
        const std::optional<int> current = context.coordinator ? context.coordinator->currentPageIndex() : std::nullopt;
        if (!current)
            return u"No page is currently open to use as \"this page\"."_qs;
        number = *current + 1;
    }
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return outOfRange(context, *number);
    const QString text = page->string().trimmed();
    return text.isEmpty() ? u"Page %1 has no extractable text."_qs.arg(*number) : text;
}

QString documentText(const DocumentText& text, const QJsonObject&) {
    constexpr qsizetype limit = 60'000; // user-perceived characters
    QString result;
    qsizetype length = 0; // of `result`, in the same; no cluster goes across the newline between two pieces
    const auto append = [&result, &length](const QString& piece) {
        result += piece;
        length += UserCharacters::count(piece);
    };
    for (int i = 0; i < text.pageCount() && !text.isStopped(); ++i) {
        if (length > limit) {
            return result.left(UserCharacters::endOfFirst(result, limit)) +
                   u"\n\n[Truncated — document is longer than fits in one call. Use get_page_text or "
                   u"search_document for anything past this point.]"_qs;
        }
        append(u"--- Page %1 of %2 ---\n"_qs.arg(QString::number(i + 1), QString::number(text.pageCount())));
        const QString body = text.string(i).trimmed();
        append(body.isEmpty() ? u"(no extractable text)\n\n"_qs : body + u"\n\n"_qs);
    }
    return result;
}

QString searchDocument(const DocumentText& text, const QJsonObject& input) {
    constexpr int limit = 5;
    const QString query = ToolArguments::string(input, queryArgument).value_or(QString());
    if (query.isEmpty())
        return u"Missing 'query' argument."_qs;
    QStringList lines;
    for (const DocumentIndex::SearchMatch& match : DocumentIndex::search(text, query, limit))
        lines.append(u"Page %1: …%2…"_qs.arg(QString::number(match.page), match.excerpt));
    return lines.isEmpty() ? u"No matches found for '%1'."_qs.arg(query) : lines.join(u'\n');
}

QString addNote(const AssistantContext& context, const QJsonObject& input) {
    const std::optional<qint64> number = ToolArguments::integer(input, pageArgument);
    const std::optional<QString> text = ToolArguments::string(input, textArgument);
    if (!number || !text)
        return u"Missing 'page' or 'text' argument."_qs;
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return u"Page %1 is out of range."_qs.arg(*number);
    AnnotatingPDFView* const view = viewer(context);
    if (!view)
        return u"Viewer is not available."_qs;
    view->addProgrammaticNote(*text, page);
    return u"Added a note on page %1."_qs.arg(*number);
}

/// A tool that reads all pages, perhaps ahead on another thread.
AssistantTool readingTool(const QString& name, const QString& description, const std::vector<ToolParameter>& parameters,
                          PreparedAnswers::Question question, const std::shared_ptr<PreparedAnswers>& answers) {
    return {name, description, toolSchema(parameters),
            [answers, question](const QJsonObject& input) { return answers->answer(question, input); },
            [answers, question](QJsonObject input) { return answers->prepare(question, std::move(input)); }};
}

} // namespace

std::vector<AssistantTool> PDFTools::make(const AssistantContext& context) {
    const QString integer = u"integer"_qs;
    const QString string = u"string"_qs;
    const ToolParameter page{pageArgument, integer};
    const auto answers = std::make_shared<PreparedAnswers>(context.pdfDocument);
    const auto selection = std::make_shared<SelectionReader>(context.coordinator);
    return {
        {u"go_to_page"_qs, u"Navigate the PDF viewer to a specific 1-based page number."_qs, toolSchema({page}),
         [context](const QJsonObject& input) { return goToPage(context, input); }},
        {u"go_to_section"_qs,
         u"Navigate to the outline/table-of-contents entry whose title best matches the given text."_qs,
         toolSchema({{titleArgument, string}}),
         [context](const QJsonObject& input) { return goToSection(context, input); }},
        {u"get_selection_text"_qs, u"Get the text currently selected by the user in the PDF viewer, if any."_qs,
         toolSchema({}), [selection](const QJsonObject&) { return selectionText(*selection); },
         [selection](const QJsonObject&) { return selection->prepare(); }},
        {u"get_page_text"_qs,
         u"Get the full text content of a specific 1-based page. Omit 'page' (or the user said \"this page\"/\"the "
         u"current page\") to use whatever page is currently shown in the viewer."_qs,
         toolSchema({{pageArgument, integer, false}}),
         [context](const QJsonObject& input) { return pageText(context, input); }},
        readingTool(u"get_document_text"_qs,
                    u"Get the full text of the entire document in one call, each page marked with a header. Use this "
                    u"for whole-document questions (summaries, overall topics) instead of calling get_page_text "
                    u"repeatedly."_qs,
                    {}, documentText, answers),
        readingTool(u"search_document"_qs,
                    u"Search the full document for a keyword or phrase and return matching pages with short "
                    u"excerpts."_qs,
                    {{queryArgument, string}}, searchDocument, answers),
        {u"add_note"_qs,
         u"Add a sticky note annotation with the given text near the top of a specific 1-based page."_qs,
         toolSchema({page, {textArgument, string}}),
         [context](const QJsonObject& input) { return addNote(context, input); }},
    };
}
