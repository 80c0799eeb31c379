// The part of AnnotatingPDFView that offers what can be done at a place.

#include "AnnotatingPDFView.h"
#include "MarkupAction.h"
#include "NoteEditor.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageOCRExtractor.h"
#include "TextBoxEditor.h"
#include "ToolState.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>

#include <QCoroTask>

namespace {

/// A question about selected text: what stands before the text, and whether the user adds nothing to it.
struct SelectionPrompt {
    QString title;
    QString prefix;
    bool send;
};

const std::vector<SelectionPrompt>& selectionPrompts() {
    static const std::vector<SelectionPrompt> prompts = {
        {QStringLiteral("Explain This"), QStringLiteral("Explain this: "), true},
        {QStringLiteral("Summarize Selection"), QStringLiteral("Summarize this: "), true},
        {QStringLiteral("Simplify / Plain English"), QStringLiteral("Rewrite this in simple, plain English: "), true},
        {QStringLiteral("Extract Key Points"),
         QStringLiteral("Extract the key points from this as a short bullet list: "), true},
        {QStringLiteral("Generate Study Questions"), QStringLiteral("Write 3 short study questions based on this: "),
         true},
        {QStringLiteral("Translate…"), QStringLiteral("Translate this to <language>: "), false},
    };
    return prompts;
}

QAction* addEntry(QMenu& menu, const QString& title, QObject* context, std::function<void()> handler) {
    QAction* const entry = menu.addAction(title);
    entry->setObjectName(title);
    QObject::connect(entry, &QAction::triggered, context, std::move(handler));
    return entry;
}

QMenu& addSubmenu(QMenu& menu) {
    QMenu* const submenu = menu.addMenu(QStringLiteral("Ask AI"));
    submenu->setObjectName(QStringLiteral("askAIMenu"));
    submenu->setAccessibleName(QStringLiteral("Ask AI"));
    return *submenu;
}

std::unique_ptr<QMenu> makeMenu(QWidget* parent, const QString& objectName, const QString& accessibleName) {
    auto menu = std::make_unique<QMenu>(parent);
    menu->setObjectName(objectName);
    menu->setAccessibleName(accessibleName);
    return menu;
}

/// The window may be closed before the text is there.
QCoro::Task<void> extractText(QPointer<AnnotatingPDFView> view, std::shared_ptr<PDFPage> page, std::stop_token stop) {
    const std::optional<QString> text = co_await PageOCRExtractor::recognizeText(page, stop);
    if (!view)
        co_return;
    const bool isFound = text && !text->isEmpty();
    if (isFound)
        QGuiApplication::clipboard()->setText(*text);
    if (view->onTextExtracted)
        view->onTextExtracted(isFound ? *text : QStringLiteral("No text could be recognized on this page."));
}

} // namespace

std::unique_ptr<QMenu> AnnotatingPDFView::menu(QPointF viewPoint) {
    const std::shared_ptr<PDFPage> page = pageAt(viewPoint, true);
    if (!m_toolState || !page)
        return PDFView::menu(viewPoint);
    return hasSelectedText() ? buildSelectionMenu() : buildPageMenu(viewPoint, page);
}

std::unique_ptr<QMenu> AnnotatingPDFView::buildSelectionMenu() {
    auto menu = makeMenu(this, QStringLiteral("selectionMenu"), QStringLiteral("Selected text"));
    for (const MarkupActionInfo& row : allMarkupActions()) {
        addEntry(*menu, row.title, this, [this, subtype = row.subtype] {
            applyMarkup(subtype);
        })->setObjectName(row.rawValue);
    }
    menu->addSeparator();
    menu->addAction(action(PDFViewCommand::copy));
    if (onAskAI) {
        menu->addSeparator();
        addAskAIMenu(*menu);
    }
    return menu;
}

void AnnotatingPDFView::addAskAIMenu(QMenu& menu) {
    // The text is read when an entry is chosen: that of a whole book takes its time.
    const auto ask = [this](const QString& prefix, bool send) {
        readSelectedText([this, prefix, send](const QString& text) {
            if (!text.isEmpty() && onAskAI)
                onAskAI(prefix.isEmpty() ? text : prefix + u'“' + text + u'”', send);
        });
    };
    QMenu& submenu = addSubmenu(menu);
    for (const SelectionPrompt& prompt : selectionPrompts())
        addEntry(submenu, prompt.title, this, [ask, prompt] { ask(prompt.prefix, prompt.send); });
    submenu.addSeparator();
    addEntry(submenu, QStringLiteral("Send to AI Assistant"), this, [ask] { ask(QString(), false); });
}

std::unique_ptr<QMenu> AnnotatingPDFView::buildPageMenu(QPointF viewPoint, const std::shared_ptr<PDFPage>& page) {
    auto menu = makeMenu(this, QStringLiteral("pageMenu"), QStringLiteral("Page"));
    addEntry(*menu, QStringLiteral("Add Note Here"), this, [this, viewPoint] { addNote(viewPoint); });
    addEntry(*menu, QStringLiteral("Add Text Box Here"), this, [this, viewPoint] {
        if (const std::shared_ptr<PDFPage> target = pageAt(viewPoint, true))
            m_textBoxEditor->start(viewPoint, target);
    });
    menu->addSeparator();
    QMenu& submenu = addSubmenu(*menu);
    if (onAskAI)
        addEntry(submenu, QStringLiteral("Summarize This Page"), this, [this, page] { askAIAboutPage(page); });
    addEntry(submenu, QStringLiteral("Extract Text with AI (OCR)"), this,
             [this, page] { extractText(this, page, m_closing.get_token()); });
    return menu;
}

void AnnotatingPDFView::askAIAboutPage(const std::shared_ptr<PDFPage>& page) {
    const int index = document() ? document()->index(page.get()) : -1;
    if (index < 0 || !onAskAI)
        return;
    readText(*page, [this, number = QString::number(index + 1)](const QString& read) {
        const QString text = read.trimmed();
        if (!onAskAI)
            return;
        if (text.isEmpty())
            onAskAI(QStringLiteral("Page %1 has no extractable text (it may be a scanned image). Let me know that "
                                   "directly rather than guessing its content.")
                        .arg(number),
                    true);
        else
            onAskAI(QStringLiteral("Summarize page ") + number + QStringLiteral(": “") + text + u'”', true);
    });
}
