#include "AssistantViewModel.h"
#include "PdfFixtures.h"
#include "ThumbnailSidebar.h"
#include "UndoManager.h"
#include "WorkspaceTest.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QProgressDialog>
#include <QPushButton>

namespace {

class RecognitionTest : public WorkspaceTest {
protected:
    /// Pages that are pictures of a line each at 300 dots per inch.
    void openScans(const QStringList& lines) {
        const auto pdf = std::make_shared<PDFDocument>();
        for (const QString& line : lines) {
            PdfFixture typed;
            typed.addPage({line});
            const auto page = PDFDocument::fromData(typed.bytes())->page(0);
            pdf->insert(PDFPage::fromImage(page->thumbnail({2550, 3300}, PDFDisplayBox::mediaBox), {612, 792}),
                        pdf->pageCount());
        }
        m_document = std::make_shared<PDFEditorDocument>();
        m_document->setPdfDocument(pdf);
        showWorkspace();
    }
    [[nodiscard]] QString string(int page) const {
        return m_document->pdfDocument()->page(page)->string().simplified();
    }
    void recognizeAll() const { find<QAction>(*m_workspace, QStringLiteral("recognizeText"))->trigger(); }
    [[nodiscard]] std::string alert() const {
        const auto alert = m_workspace->sidebar().pendingAlert();
        return alert ? (alert->title + u'|' + alert->message).toStdString() : std::string();
    }
    /// What is said after a press of the button.
    [[nodiscard]] QString saidNext() {
        const auto count = m_workspace->assistant()->turns().size();
        press(QStringLiteral("ocrPage"));
        press(QStringLiteral("ocrPage")); // it runs already
        EXPECT_TRUE(QTest::qWaitFor([&] { return m_workspace->assistant()->turns().size() == count + 1; }, 60'000));
        return m_workspace->assistant()->turns().back().text;
    }
};

} // namespace

TEST_F(RecognitionTest, theTextOfThePageIsCopiedAndShownAndPutIntoThePage) {
    openWorkspace({.pageCount = 2});
    press(QStringLiteral("ocrPage")); // "Page 1" is too short to be a text
    m_workspace.reset();              // and whoever closes the window ends it

    const QString line = QStringLiteral("The invoice number is 4711");
    openScans({line, QString()});
    EXPECT_EQ(saidNext(), QStringLiteral("Extracted text:\n\n") + line);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), line);
    EXPECT_EQ(string(0), line);
    EXPECT_TRUE(m_workspace->showsAssistant());
    m_document->undoManager()->undo();
    EXPECT_EQ(string(0), QString());

    m_view->goToPage(m_document->pdfDocument()->page(1));
    EXPECT_EQ(saidNext(), QStringLiteral("Extracted text:\n\nNo text could be recognized on this page."));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), line);

    const QByteArray before = qgetenv("TESSDATA_PREFIX");
    qputenv("TESSDATA_PREFIX", m_folder.path().toLocal8Bit());
    EXPECT_TRUE(saidNext().contains(QStringLiteral("Install the package “tesseract-ocr-eng”")));
    before.isNull() ? qunsetenv("TESSDATA_PREFIX") : qputenv("TESSDATA_PREFIX", before);
}

TEST_F(RecognitionTest, allPagesWithoutTextGetOneUnlessCancelled) {
    openScans({QStringLiteral("The first of the pages here"), QStringLiteral("The second of the pages here")});
    recognizeAll();
    QPointer progress(find<QProgressDialog>(*m_workspace, QStringLiteral("recognitionProgress")));
    progress->findChild<QPushButton*>()->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !progress; }, 60'000));
    EXPECT_FALSE(m_document->undoManager()->canUndo() || !alert().empty());

    recognizeAll();
    progress = find<QProgressDialog>(*m_workspace, QStringLiteral("recognitionProgress"));
    QString told;
    const auto isDone = [&] {
        if (progress && progress->labelText().endsWith(QStringLiteral(" of 2")))
            told = progress->labelText();
        return !alert().empty();
    };
    ASSERT_TRUE(QTest::qWaitFor(isDone, 60'000));
    EXPECT_TRUE(told.startsWith(QStringLiteral("Recognizing page ")));
    EXPECT_EQ(alert(), "Recognition Complete|Added a searchable text layer to 2 pages.");
    EXPECT_EQ(string(0) + string(1), QStringLiteral("The first of the pages hereThe second of the pages here"));
    recognizeAll();
    EXPECT_TRUE(QTest::qWaitFor([this] { return alert().starts_with("Nothing to Recognize|"); }, 60'000));
    m_document->undoManager()->undo();
    EXPECT_EQ(string(0) + string(1), QString());
    EXPECT_FALSE(m_document->undoManager()->canUndo());
}
