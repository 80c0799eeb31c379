#include "PrintPanel.h"

#include "PDFAnnotation.h"
#include "PassingNotice.h"
#include "PdfPrograms.h"
#include "WorkspaceActions.h"
#include "WorkspaceTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

class PrintPanelTest : public WorkspaceTest {
protected:
    /// Presses "Print…" and chooses a file in the dialog.
    QPrintDialog* openDialog(const QString& path) {
        m_workspace->actions()->action(WorkspaceActions::Command::print)->trigger();
        auto* dialog = m_workspace->findChild<QPrintDialog*>(QStringLiteral("printDialog"));
        EXPECT_TRUE(dialog && QTest::qWaitForWindowExposed(dialog));
        auto* printers = find<QComboBox>(*dialog, QStringLiteral("printers"));
        printers->setCurrentIndex(printers->count() - 1); // behind this machine's printers comes the one to a file
        auto* file = find<QLineEdit>(*dialog, QStringLiteral("filename"));
        EXPECT_TRUE(file->isEnabled());
        file->setText(path);
        return dialog;
    }

    QByteArray printed(const QString& path) {
        EXPECT_TRUE(QTest::qWaitFor([this] { return !m_workspace->notice().message().isEmpty(); }, 30'000));
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
};

TEST_F(PrintPanelTest, printsTheChosenPagesToAFileAsTheyAre) {
    openWorkspace({.pageCount = 5});
    const auto mark = std::make_shared<PDFAnnotation>(QRectF(100, 100, 50, 20), PDFAnnotationSubtype::square);
    m_document->pdfDocument()->page(3)->addAnnotation(mark);
    const struct {
        const char* choice; ///< the radio button
        const char* range;
        bool annotations;
        const char* words;
    } cases[] = {{"printAll", "", true, "Page 1 Page 2 Page 3 Page 4 Page 5"},
                 {"pagesRadioButton", "4,1-2", true, "Page 1 Page 2 Page 4"},
                 {"pagesRadioButton", "3-4", false, "Page 3 Page 4"},
                 {"printCurrentPage", "", true, "Page 2"}};
    m_view->goToPage(m_document->pdfDocument()->page(1));
    int number = 0;
    for (const auto& each : cases) {
        const QString path = m_folder.filePath(QStringLiteral("printed %1.pdf").arg(++number));
        QPrintDialog* dialog = openDialog(path);
        find<QRadioButton>(*dialog, QLatin1String(each.choice))->setChecked(true);
        if (*each.range)
            find<QLineEdit>(*dialog, QStringLiteral("pagesLineEdit"))->setText(QLatin1String(each.range));
        find<QCheckBox>(*dialog, QStringLiteral("printsAnnotations"))->setChecked(each.annotations);
        dialog->accept();
        const QByteArray pdf = printed(path);
        EXPECT_EQ(PdfPrograms::text(pdf).simplified().toStdString(), each.words);
        EXPECT_EQ(PdfPrograms::unpacked(pdf).contains("/Square"), each.annotations && strstr(each.words, "Page 4"))
            << each.words;
        m_workspace->notice().announce({});
    }
}

TEST_F(PrintPanelTest, cancellingAndClosingTheWindowLeaveNothingBehind) {
    openWorkspace({.pageCount = 2});
    const QString path = m_folder.filePath(QStringLiteral("printed.pdf"));
    openDialog(path)->reject();
    QTest::qWait(0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(m_workspace->findChild<PrintPanel*>(), nullptr);
    EXPECT_FALSE(QFile::exists(path));

    openDialog(path)->accept();
    m_workspace.reset(); // while the file is being put together
    EXPECT_TRUE(QTest::qWaitFor([&path] { return QFile::exists(path); }, 30'000));
}

} // namespace
