#include "AssistantViewModel.h"
#include "ThumbnailSidebar.h"
#include "UndoManager.h"
#include "WorkspaceTest.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QPainter>
#include <QProgressDialog>
#include <QPushButton>

namespace {

class RecognitionTest : public WorkspaceTest {
protected:
    /// Pages that are pictures of a line each, in letters of 12 points at 300 dots per inch.
    void openScans(const QStringList& lines) {
        const auto pdf = std::make_shared<PDFDocument>();
        for (const QString& line : lines) {
            QImage scan(1500, 1000, QImage::Format_Grayscale8);
            scan.fill(Qt::white);
            QPainter painter(&scan);
            QFont font(QStringLiteral("DejaVu Serif"));
            font.setPixelSize(50);
            painter.setFont(font);
            painter.drawText(QPointF(200, 300), line);
            painter.end();
            pdf->insert(PDFPage::fromImage(scan, QSizeF(360, 240)), pdf->pageCount());
        }
        m_document = std::make_shared<PDFEditorDocument>();
        m_document->setPdfDocument(pdf);
        showWorkspace();
    }
    [[nodiscard]] QString said() const {
        const auto& turns = m_workspace->assistant()->turns();
        return turns.empty() ? QString() : turns.back().text;
    }
    [[nodiscard]] QString string(int page) const {
        return m_document->pdfDocument()->page(page)->string().simplified();
    }
    void run(const char* command) const { find<QAction>(*m_workspace, QLatin1String(command))->trigger(); }
    [[nodiscard]] bool hasAlert() const { return m_workspace->sidebar().pendingAlert().has_value(); }
    [[nodiscard]] std::string alert() const {
        const auto alert = m_workspace->sidebar().pendingAlert();
        return alert ? (alert->title + QLatin1Char('|') + alert->message).toStdString() : std::string();
    }
};

} // namespace

TEST_F(RecognitionTest, theTextOfThePageIsCopiedAndShownAndPutIntoThePage) {
    openWorkspace({.pageCount = 1});
    m_document->pdfDocument()->insert(m_document->pdfDocument()->page(0)->copy(), 1);
    QGuiApplication::clipboard()->clear();
    press(QStringLiteral("ocrPage")); // "Page 1" is too short to be a text
    m_workspace.reset();              // and whoever closes the window ends it

    openScans({QStringLiteral("The invoice number is 4711"), QString()});
    press(QStringLiteral("ocrPage"));
    press(QStringLiteral("ocrPage")); // it runs already
    ASSERT_TRUE(QTest::qWaitFor([this] { return !said().isEmpty(); }, 60'000));
    EXPECT_EQ(said(), QStringLiteral("Extracted text:\n\nThe invoice number is 4711"));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("The invoice number is 4711"));
    EXPECT_EQ(string(0), QStringLiteral("The invoice number is 4711"));
    EXPECT_EQ(m_workspace->assistant()->turns().size(), 1U);
    m_document->undoManager()->undo();
    EXPECT_EQ(string(0), QString());

    m_view->goToPage(m_document->pdfDocument()->page(1));
    press(QStringLiteral("ocrPage"));
    ASSERT_TRUE(QTest::qWaitFor([this] { return m_workspace->assistant()->turns().size() == 2; }, 60'000));
    EXPECT_EQ(said(), QStringLiteral("Extracted text:\n\nNo text could be recognized on this page."));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("The invoice number is 4711"));

    const QByteArray before = qgetenv("TESSDATA_PREFIX");
    qputenv("TESSDATA_PREFIX", m_folder.path().toLocal8Bit());
    press(QStringLiteral("ocrPage"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_workspace->assistant()->turns().size() == 3; }, 60'000));
    EXPECT_TRUE(said().contains(QStringLiteral("Install the package “tesseract-ocr-eng”"))) << said().toStdString();
    before.isNull() ? qunsetenv("TESSDATA_PREFIX") : qputenv("TESSDATA_PREFIX", before);
}

TEST_F(RecognitionTest, allPagesWithoutTextGetOneUnlessCancelled) {
    openScans({QStringLiteral("The first of the pages here"), QStringLiteral("The second of the pages here")});
    run("recognizeText");
    QPointer progress(find<QProgressDialog>(*m_workspace, QStringLiteral("recognitionProgress")));
    progress->findChild<QPushButton*>()->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !progress; }, 60'000));
    EXPECT_FALSE(m_document->undoManager()->canUndo() || hasAlert());

    run("recognizeText");
    progress = find<QProgressDialog>(*m_workspace, QStringLiteral("recognitionProgress"));
    QString told;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            if (progress && progress->labelText().endsWith(QStringLiteral(" of 2")))
                told = progress->labelText();
            return hasAlert();
        },
        60'000));
    EXPECT_TRUE(told.startsWith(QStringLiteral("Recognizing page ")));
    EXPECT_EQ(alert(), "Recognition Complete|Added a searchable text layer to 2 pages.");
    EXPECT_EQ(string(0) + string(1), QStringLiteral("The first of the pages hereThe second of the pages here"));
    run("recognizeText");
    ASSERT_TRUE(QTest::qWaitFor([this] { return alert().starts_with("Nothing"); }, 60'000));
    EXPECT_EQ(alert(), "Nothing to Recognize|Every page already has a text layer.");
    m_document->undoManager()->undo();
    EXPECT_EQ(string(0) + string(1), QString());
    EXPECT_FALSE(m_document->undoManager()->canUndo());
}
