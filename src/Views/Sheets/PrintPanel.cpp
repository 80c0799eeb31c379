#include "PrintPanel.h"

#include "PDFDocument.h"
#include "PDFError.h"
#include "PlainText.h"
#include "PrintCopy.h"
#include "PrintRuns.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrintEngine>
#include <QPrinter>
#include <QVBoxLayout>

#include <algorithm>

namespace {

/// What the dialog keeps for the print service beyond the printer's own properties: names and values in turns. Qt has
/// no name for it in its public headers.
QStringList serviceOptions(const QPrinter& printer) {
    constexpr auto cupsOptions = static_cast<QPrintEngine::PrintEnginePropertyKey>(0xfe00);
    return printer.printEngine()->property(cupsOptions).toStringList();
}

QString serviceOption(const QPrinter& printer, const QString& name) {
    const QStringList all = serviceOptions(printer);
    for (qsizetype i = 0; i + 1 < all.size(); i += 2)
        if (all[i] == name)
            return all[i + 1];
    return {};
}

QString couldNotBePrinted(const QString& documentName) {
    return QStringLiteral("“%1” couldn't be printed.").arg(PlainText::name(documentName));
}

/// An empty sentence stands for success.
void tellEnd(const PrintPanel::Messages& messages, const PrintOrder& order, const QString& failure) {
    if (!failure.isEmpty())
        messages.failed(couldNotBePrinted(order.documentName), failure);
    else if (order.path.isEmpty())
        messages.done(QStringLiteral("Sent to “%1”").arg(order.job.printer));
    else
        messages.done(QStringLiteral("Printed to “%1”").arg(QFileInfo(order.path).fileName()));
}

} // namespace

PrintPanel* PrintPanel::show(const std::shared_ptr<PDFDocument>& document, const QString& documentName, int currentPage,
                             QWidget* parent, Messages messages) {
    auto* panel = new PrintPanel(document, documentName, currentPage, parent, std::move(messages));
    panel->m_dialog->open();
    return panel;
}

PrintPanel::PrintPanel(std::shared_ptr<PDFDocument> document, QString documentName, int currentPage, QWidget* parent,
                       Messages messages)
    : QObject(parent), m_document(std::move(document)), m_documentName(std::move(documentName)),
      m_currentPage(currentPage), m_messages(std::move(messages)),
      m_printer(std::make_unique<QPrinter>(QPrinter::HighResolution)),
      m_dialog(new QPrintDialog(m_printer.get(), parent ? parent->window() : nullptr)),
      m_annotations(new QCheckBox(QStringLiteral("Print &annotations"))) {
    m_printer->setDocName(m_documentName);
    m_dialog->setObjectName(QStringLiteral("printDialog"));
    m_dialog->setWindowTitle(QStringLiteral("Print “%1”").arg(PlainText::windowTitle(m_documentName)));
    m_dialog->setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintPageRange |
                         QAbstractPrintDialog::PrintCurrentPage | QAbstractPrintDialog::PrintCollateCopies |
                         QAbstractPrintDialog::PrintShowPageSize);
    m_dialog->setMinMax(1, m_document->pageCount());
    m_dialog->setFromTo(1, m_document->pageCount());

    auto* content = new QWidget;
    content->setWindowTitle(QStringLiteral("Content"));
    m_annotations->setObjectName(QStringLiteral("printsAnnotations"));
    m_annotations->setToolTip(
        QStringLiteral("Notes, highlights and all else that was put onto the pages. Filled forms are "
                       "always printed."));
    m_annotations->setChecked(true);
    auto* layout = new QVBoxLayout(content);
    layout->addWidget(m_annotations);
    layout->addStretch();
    m_dialog->setOptionTabs({content});

    connect(m_dialog, &QDialog::accepted, this, &PrintPanel::print);
    connect(m_dialog, &QDialog::rejected, this, &QObject::deleteLater);
}

PrintPanel::~PrintPanel() {
    delete m_dialog; // it refers to the printer; null when its window went before
}

std::vector<int> PrintPanel::pages(const QPrinter& printer, int pageCount, int currentPage) {
    std::vector<int> pages;
    const auto add = [&](int from, int to) {
        for (int page = std::max(from, 1); page <= std::min(to, pageCount); ++page)
            pages.push_back(page - 1);
    };
    switch (printer.printRange()) {
    case QPrinter::CurrentPage:
        add(currentPage + 1, currentPage + 1);
        break;
    case QPrinter::PageRange:
        if (!printer.pageRanges().isEmpty()) {
            for (const QPageRanges::Range& range : printer.pageRanges().toRangeList())
                add(range.from, range.to);
        } else {
            add(printer.fromPage(), printer.toPage() > 0 ? printer.toPage() : pageCount);
        }
        break;
    case QPrinter::AllPages:
    case QPrinter::Selection:
        add(1, pageCount);
        break;
    }
    const QString set = serviceOption(printer, QStringLiteral("page-set"));
    if (set == QLatin1String("odd") || set == QLatin1String("even")) {
        const int odd = set == QLatin1String("odd") ? 1 : 0;
        std::erase_if(pages, [odd](int page) { return (page + 1) % 2 != odd; });
    }
    if (printer.pageOrder() == QPrinter::LastPageFirst)
        std::reverse(pages.begin(), pages.end());
    return pages;
}

QList<std::pair<QString, QString>> PrintPanel::options(const QPrinter& printer) {
    QList<std::pair<QString, QString>> options;
    const auto add = [&options](const char* name, const QString& value) {
        options.append({QLatin1String(name), value});
    };
    add("media", QPageSize::key(printer.pageLayout().pageSize().id()));
    add("print-scaling", QStringLiteral("auto-fit")); // a page that is too large for the paper is made to fit
    switch (printer.duplex()) {
    case QPrinter::DuplexNone:
        add("sides", QStringLiteral("one-sided"));
        break;
    case QPrinter::DuplexLongSide:
        add("sides", QStringLiteral("two-sided-long-edge"));
        break;
    case QPrinter::DuplexShortSide:
        add("sides", QStringLiteral("two-sided-short-edge"));
        break;
    case QPrinter::DuplexAuto:
        break;
    }
    if (printer.colorMode() == QPrinter::GrayScale)
        add("print-color-mode", QStringLiteral("monochrome"));
    if (printer.copyCount() > 1)
        add("Collate", printer.collateCopies() ? QStringLiteral("true") : QStringLiteral("false"));
    const QStringList more = serviceOptions(printer);
    for (qsizetype i = 0; i + 1 < more.size(); i += 2) {
        const QString& name = more[i];
        // The pages have been chosen when the copy was made.
        if (name != QLatin1String("page-set") && name != QLatin1String("page-ranges"))
            options.append({name, more[i + 1]});
    }
    return options;
}

void PrintPanel::print() {
    const std::vector<int> chosen = pages(*m_printer, m_document->pageCount(), m_currentPage);
    if (chosen.empty()) {
        m_messages.failed(couldNotBePrinted(m_documentName), QStringLiteral("None of its pages is in that range."));
        deleteLater();
        return;
    }
    try {
        PrintOrder order{PrintCopy::of(*m_document, chosen, m_annotations->isChecked()),
                         m_documentName,
                         m_printer->outputFileName(),
                         {}};
        order.job.printer = m_printer->printerName();
        order.job.title = m_documentName;
        order.job.copies = m_printer->copyCount();
        order.job.options = options(*m_printer);
        PrintRuns::shared().start(
            order, [messages = m_messages, order](const QString& failure) { tellEnd(messages, order, failure); });
    } catch (const PDFError& error) {
        m_messages.failed(couldNotBePrinted(m_documentName), error.sentence());
    }
    deleteLater();
}
