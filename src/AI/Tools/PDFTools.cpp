#include "PDFTools.h"

#include "AnnotatingPDFView.h"
#include "DocumentIndex.h"
#include "DocumentText.h"
#include "GraphemeClusters.h"
#include "PDFDestination.h"
#include "PDFDocument.h"
#include "PDFOutline.h"
#include "PDFPage.h"
#include "PDFSource.h"
#include "PDFViewCoordinator.h"
#include "PreparedAnswers.h"
#include "ReadingAhead.h"
#include "SelectionReader.h"
#include "ToolArguments.h"
#include "ToolSchema.h"

#include <algorithm>
#include <functional>

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
    return QStringLiteral("Page %1 is out of range. This document has %2 pages.")
        .arg(QString::number(number), QString::number(context.pdfDocument->pageCount()));
}

QString goToPage(const AssistantContext& context, const QJsonObject& input) {
    const std::optional<qint64> number = ToolArguments::integer(input, pageArgument);
    if (!number)
        return QStringLiteral("Missing or invalid 'page' argument.");
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return outOfRange(context, *number);
    if (AnnotatingPDFView* const view = viewer(context))
        view->goToPage(page);
    return QStringLiteral("Navigated to page %1.").arg(*number);
}

QString goToSection(const AssistantContext& context, const QJsonObject& input) {
    constexpr std::size_t listedTitles = 15;
    const std::optional<QString> title = ToolArguments::string(input, titleArgument);
    if (!title)
        return QStringLiteral("Missing 'title' argument.");
    const std::vector<DocumentIndex::OutlineEntry> entries = DocumentIndex::flattenedOutline(*context.pdfDocument);
    if (entries.empty()) {
        return QStringLiteral(
            "This document has no table of contents to navigate by. Try go_to_page or search_document "
            "instead.");
    }
    const std::optional<DocumentIndex::OutlineEntry> match = DocumentIndex::bestMatch(*title, entries);
    if (!match) {
        QStringList titles;
        for (std::size_t i = 0; i < std::min(entries.size(), listedTitles); ++i)
            titles.append(entries[i].title);
        return QStringLiteral("No section title closely matches '%1'. Available sections: %2")
            .arg(*title, titles.join(QStringLiteral("; ")));
    }
    AnnotatingPDFView* const view = viewer(context);
    if (view && match->outline->destination())
        view->goToDestination(*match->outline->destination());
    return QStringLiteral("Navigated to section '%1'.").arg(match->title);
}

QString selectionText(const SelectionReader& selection) {
    const QString text = selection.text();
    return text.isEmpty() ? QStringLiteral("No text is currently selected.") : text;
}

/// The page asked for, 1-based, or the current one. None when neither is told.
std::optional<qint64> pageAskedFor(const AssistantContext& context, const QJsonObject& input) {
    if (const std::optional<qint64> number = ToolArguments::integer(input, pageArgument))
        return number;
    const std::optional<int> current = context.coordinator ? context.coordinator->currentPageIndex() : std::nullopt;
    return current ? std::optional<qint64>(*current + 1) : std::nullopt;
}

/// Has the text of the page at hand when it is asked for: some pages take seconds.
QCoro::Task<void> readPageAhead(std::shared_ptr<ReadingAhead> ahead, AssistantContext context, QJsonObject input) {
    const std::optional<qint64> number = pageAskedFor(context, input);
    const std::shared_ptr<PDFPage> page = number ? pageOfNumber(context, *number) : nullptr;
    if (!page || !page->content().source)
        co_return;
    // Named, because GCC 12 destroys a closure twice that is made within a co_await expression.
    std::function<QString()> work = [content = page->content(), stop = ahead->stopToken()] {
        (void)content.source->text(content.pageNumber, stop); // stays with the source for a while
        return QString();
    };
    (void)co_await ahead->read(std::move(work));
}

QString pageText(const AssistantContext& context, const QJsonObject& input) {
    const std::optional<qint64> number = pageAskedFor(context, input);
    if (!number)
        return QStringLiteral("No page is currently open to use as \"this page\".");
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return outOfRange(context, *number);
    const QString text = page->string().trimmed();
    return text.isEmpty() ? QStringLiteral("Page %1 has no extractable text.").arg(*number) : text;
}

QString documentText(const DocumentText& text, const QJsonObject&) {
    constexpr qsizetype limit = 60'000; // user-perceived characters
    QString result;
    qsizetype length = 0; // of `result`, in the same; no cluster goes across the newline between two pieces
    const auto append = [&result, &length](const QString& piece) {
        result += piece;
        length += GraphemeClusters::count(piece);
    };
    for (int i = 0; i < text.pageCount() && !text.isStopped(); ++i) {
        if (length > limit) {
            return result.left(GraphemeClusters::endOfFirst(result, limit)) +
                   QStringLiteral("\n\n[Truncated — document is longer than fits in one call. Use get_page_text or "
                                  "search_document for anything past this point.]");
        }
        append(
            QStringLiteral("--- Page %1 of %2 ---\n").arg(QString::number(i + 1), QString::number(text.pageCount())));
        const QString body = text.string(i).trimmed();
        append(body.isEmpty() ? QStringLiteral("(no extractable text)\n\n") : body + QStringLiteral("\n\n"));
    }
    return result;
}

QString searchDocument(const DocumentText& text, const QJsonObject& input) {
    constexpr int limit = 5;
    const QString query = ToolArguments::string(input, queryArgument).value_or(QString());
    if (query.isEmpty())
        return QStringLiteral("Missing 'query' argument.");
    QStringList lines;
    for (const DocumentIndex::SearchMatch& match : DocumentIndex::search(text, query, limit))
        lines.append(QStringLiteral("Page %1: …%2…").arg(QString::number(match.page), match.excerpt));
    return lines.isEmpty() ? QStringLiteral("No matches found for '%1'.").arg(query) : lines.join(u'\n');
}

QString addNote(const AssistantContext& context, const QJsonObject& input) {
    const std::optional<qint64> number = ToolArguments::integer(input, pageArgument);
    const std::optional<QString> text = ToolArguments::string(input, textArgument);
    if (!number || !text)
        return QStringLiteral("Missing 'page' or 'text' argument.");
    const std::shared_ptr<PDFPage> page = pageOfNumber(context, *number);
    if (!page)
        return QStringLiteral("Page %1 is out of range.").arg(*number);
    AnnotatingPDFView* const view = viewer(context);
    if (!view)
        return QStringLiteral("Viewer is not available.");
    view->addProgrammaticNote(*text, page);
    return QStringLiteral("Added a note on page %1.").arg(*number);
}

/// A tool that reads all pages, perhaps ahead on another thread.
AssistantTool readingTool(const QString& name, const QString& description, const std::vector<ToolParameter>& parameters,
                          PreparedAnswers::AnswerFunction function, const std::shared_ptr<PreparedAnswers>& answers) {
    return {name, description, toolSchema(parameters),
            [answers, function](const QJsonObject& input) { return answers->answer(function, input); },
            [answers, function](QJsonObject input) { return answers->prepare(function, std::move(input)); }};
}

} // namespace

std::vector<AssistantTool> PDFTools::make(const AssistantContext& context) {
    const QString integer = QStringLiteral("integer");
    const QString string = QStringLiteral("string");
    const ToolParameter page{pageArgument, integer};
    const auto answers = std::make_shared<PreparedAnswers>(context.pdfDocument);
    const auto ahead = std::make_shared<ReadingAhead>();
    const auto selection = std::make_shared<SelectionReader>(context.coordinator);
    return {
        {QStringLiteral("go_to_page"), QStringLiteral("Navigate the PDF viewer to a specific 1-based page number."),
         toolSchema({page}), [context](const QJsonObject& input) { return goToPage(context, input); }},
        {QStringLiteral("go_to_section"),
         QStringLiteral("Navigate to the outline/table-of-contents entry whose title best matches the given text."),
         toolSchema({{titleArgument, string}}),
         [context](const QJsonObject& input) { return goToSection(context, input); }},
        {QStringLiteral("get_selection_text"),
         QStringLiteral("Get the text currently selected by the user in the PDF viewer, if any."), toolSchema({}),
         [selection](const QJsonObject&) { return selectionText(*selection); },
         [selection](const QJsonObject&) { return selection->prepare(); }},
        {QStringLiteral("get_page_text"),
         QStringLiteral(
             "Get the full text content of a specific 1-based page. Omit 'page' (or the user said \"this page\"/\"the "
             "current page\") to use whatever page is currently shown in the viewer."),
         toolSchema({{pageArgument, integer, false}}),
         [context](const QJsonObject& input) { return pageText(context, input); },
         [context, ahead](QJsonObject input) { return readPageAhead(ahead, context, std::move(input)); }},
        readingTool(
            QStringLiteral("get_document_text"),
            QStringLiteral(
                "Get the full text of the entire document in one call, each page marked with a header. Use this "
                "for whole-document questions (summaries, overall topics) instead of calling get_page_text "
                "repeatedly."),
            {}, documentText, answers),
        readingTool(
            QStringLiteral("search_document"),
            QStringLiteral("Search the full document for a keyword or phrase and return matching pages with short "
                           "excerpts."),
            {{queryArgument, string}}, searchDocument, answers),
        {QStringLiteral("add_note"),
         QStringLiteral("Add a sticky note annotation with the given text near the top of a specific 1-based page."),
         toolSchema({page, {textArgument, string}}),
         [context](const QJsonObject& input) { return addNote(context, input); }},
    };
}
