#pragma once

#include <QObject>
#include <QPointer>
#include <QPrintDialog>

#include <functional>
#include <memory>
#include <vector>

class PDFDocument;
class QCheckBox;
class QPrinter;

/// Printing a document: the desktop's print dialog with one choice of ours, then the pages on their way to the printer
/// or into a file. Pages are sent as they are, not as pictures. What was chosen is printed whatever becomes of the
/// window. One panel for one print; it deletes itself. Main thread only.
class PrintPanel : public QObject {
    Q_OBJECT

public:
    /// How it ended is told when the dialog is gone already, and perhaps its window.
    struct Messages {
        std::function<void(const QString& sentence)> done;
        std::function<void(const QString& title, const QString& sentence)> failed;
    };

    /// Shows the dialog over `parent`'s window and returns at once. `currentPage` is zero-based.
    static PrintPanel* show(const std::shared_ptr<PDFDocument>& document, const QString& documentName, int currentPage,
                            QWidget* parent, Messages messages);
    ~PrintPanel() override;

    [[nodiscard]] QPrintDialog* dialog() const { return m_dialog; }

    /// The pages that the dialog's answer means, zero-based, in the order of printing.
    [[nodiscard]] static std::vector<int> pages(const QPrinter& printer, int pageCount, int currentPage);
    /// The answer for the print service: names and values of `lp`'s options.
    [[nodiscard]] static QList<std::pair<QString, QString>> options(const QPrinter& printer);

private:
    PrintPanel(std::shared_ptr<PDFDocument> document, QString documentName, int currentPage, QWidget* parent,
               Messages messages);
    void print();

    std::shared_ptr<PDFDocument> m_document;
    QString m_documentName;
    int m_currentPage;
    Messages m_messages;
    std::unique_ptr<QPrinter> m_printer;
    QPointer<QPrintDialog> m_dialog;
    QCheckBox* m_annotations;
};
