#include "PDFAnnotation.h"
#include "PageText.h"
#include "PassingNotice.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "RedactionApplier.h"
#include "RedactionMarkerAnnotation.h"
#include "UndoManager.h"
#include "WorkspaceActions.h"
#include "WorkspaceTest.h"

#include <QAction>
#include <QFile>
#include <QPointer>
#include <QProgressDialog>

#include <cstdlib>

namespace {

/// A page as the window shows it, one pixel for a point.
QImage shown(const PDFPage& page) {
    const QSize size = page.displaySize(PDFDisplayBox::cropBox).toSize();
    return page.thumbnail(size, PDFDisplayBox::cropBox).convertToFormat(QImage::Format_Grayscale8);
}

/// How far the pictures are from each other on average, of 255, apart from the pixels of `hole`.
double difference(const QImage& one, const QImage& other, const QRect& hole) {
    double sum = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            if (!hole.contains(x, y))
                sum += std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]);
    return sum / (double(one.width()) * one.height());
}

class RedactionTest : public WorkspaceTest {
protected:
    void openFile(const QByteArray& bytes) {
        QFile file(m_folder.filePath(QStringLiteral("letter %1.pdf").arg(++m_files)));
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        m_document = opened(QUrl::fromLocalFile(file.fileName()));
        ASSERT_TRUE(m_document);
        showWorkspace();
    }
    [[nodiscard]] std::shared_ptr<PDFPage> page() const { return m_document->pdfDocument()->page(0); }
    [[nodiscard]] UndoManager& undoManager() const { return *m_document->undoManager(); }
    /// Draws a marker with the tool.
    void mark(const QRectF& area) {
        m_toolState->setTool(AnnotationTool::redact);
        const auto mouse = [this](QEvent::Type type, QPointF point, Qt::MouseButtons buttons) {
            const QPointF at = m_view->convertFromPage(point, *page());
            QMouseEvent event(type, at, m_view->viewport()->mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
            QCoreApplication::sendEvent(m_view->viewport(), &event);
        };
        mouse(QEvent::MouseButtonPress, area.topLeft(), Qt::LeftButton);
        mouse(QEvent::MouseMove, area.bottomRight(), Qt::LeftButton);
        mouse(QEvent::MouseButtonRelease, area.bottomRight(), Qt::NoButton);
        QCoreApplication::processEvents();
    }

    int m_files = 0;
};

} // namespace

TEST_F(RedactionTest, whatIsMarkedIsGoneAndTheRestLooksAsBefore) {
    const struct {
        const char* what;
        std::vector<std::pair<const char*, const char*>> keys;
    } cases[] = {
        {"plain", {}},
        {"a media box elsewhere", {{"/MediaBox", "[-50 20 562 812]"}}},
        {"turned, cropped", {{"/MediaBox", "[-50 20 562 812]"}, {"/CropBox", "[40 500 500 790]"}, {"/Rotate", "90"}}},
        {"large units", {{"/UserUnit", "2"}, {"/Rotate", "270"}, {"/CropBox", "[40 500 500 790]"}}}};
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        PdfFixture pdf;
        pdf.addPage({QStringLiteral("Secret words"), QStringLiteral("Public words")});
        pdf.addAnnotation(0, "<< /Subtype /Square /Rect [72 600 120 640] /C [0 0 1] /Contents (SecretNote) >>");
        for (const auto& [key, value] : each.keys)
            pdf.setPageKey(0, key, value);
        openFile(pdf.bytes());
        const QImage before = shown(*page());
        const PDFPageGeometry geometry = page()->geometry();
        const QRectF area = page()->text()->lines.at(0).bounds.adjusted(-2, -2, 2, 2);
        const QRect hole =
            page()->displayTransform(PDFDisplayBox::cropBox).mapRect(area).toAlignedRect().adjusted(-1, -1, 1, 1);
        mark(area);
        EXPECT_EQ(page()->string(), QString());
        EXPECT_TRUE(page()->annotations().empty());
        EXPECT_EQ(page()->geometry(), geometry);
        const QImage after = shown(*page());
        ASSERT_EQ(after.size(), before.size());
        EXPECT_LT(difference(before, after, hole), 2);
        const QRect inside = hole.adjusted(3, 3, -3, -3);
        QImage black(inside.size(), QImage::Format_Grayscale8);
        black.fill(Qt::black);
        EXPECT_EQ(after.copy(inside), black);
        EXPECT_EQ(m_workspace->notice().message(),
                  QStringLiteral("Redacted — text is now permanently removed. Ctrl+Z to undo"));
        const QByteArray all = PdfPrograms::unpacked(m_document->pdfDocument()->dataRepresentation());
        EXPECT_FALSE(all.contains("Secret") || all.contains("Public"));
        m_workspace.reset();
    }
}

TEST_F(RedactionTest, markerAndRedactionAreTwoStepsAndARedoIsTheLastWord) {
    openWorkspace({.pageCount = 2});
    const auto original = page();
    const QAction* apply = m_workspace->actions()->action(WorkspaceActions::Command::applyRedactions);
    mark({100, 300, 50, 40});
    EXPECT_NE(page(), original);
    undoManager().undo();
    EXPECT_EQ(page(), original);
    ASSERT_EQ(page()->annotations().size(), 1U) << "the marker is pending again";
    EXPECT_TRUE(QTest::qWaitFor([this] { return button(QStringLiteral("applyRedactions"))->isVisible(); }));
    undoManager().undo();
    EXPECT_TRUE(page()->annotations().empty());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !apply->isVisible(); }));
    EXPECT_FALSE(button(QStringLiteral("applyRedactions"))->isVisible());
    undoManager().redo();
    undoManager().redo();
    EXPECT_NE(page(), original);
    undoManager().undo();
    EXPECT_NE(page(), original) << "no way back";
}

TEST_F(RedactionTest, markersOfAFileArePendingAndGoWithTheNext) {
    PdfFixture pdf;
    for (const char* words : {"First", "Second", "Third", "Fourth"})
        pdf.addPage({QLatin1String(words)});
    QByteArray wide("feff"); // UTF-16
    for (const QChar character : RedactionMarkerAnnotation::marker)
        wide += QByteArray::number(character.unicode(), 16).rightJustified(4, '0');
    const QByteArray marker = "(" + RedactionMarkerAnnotation::marker.toLatin1() + ")";
    const std::vector<std::pair<int, QByteArray>> contents{
        {0, "(" + RedactionMarkerAnnotation::marker.toLatin1() + "s)"}, {1, marker}, {3, "<" + wide + ">"}};
    for (const auto& [page, text] : contents)
        pdf.addAnnotation(page, "<< /Subtype /Square /Rect [60 700 200 740] /Contents " + text + " >>");
    pdf.addAnnotation(2, "<< /Rect [60 700 200 740] /Contents " + marker + " >>"); // no annotation without a kind
    openFile(pdf.bytes());
    EXPECT_EQ(RedactionApplier::unsearchedFiles(*m_document->pdfDocument()).size(), 1U);
    EXPECT_TRUE(QTest::qWaitFor([this] { return button(QStringLiteral("applyRedactions"))->isVisible(); }))
        << "although nobody has seen these pages";
    EXPECT_TRUE(RedactionApplier::unsearchedFiles(*m_document->pdfDocument()).empty());
    EXPECT_EQ(RedactionApplier::markedPages(*m_document->pdfDocument()), (std::vector<int>{1, 3}));
    EXPECT_EQ(RedactionApplier::apply(*m_document, nullptr), 2);
    EXPECT_EQ(RedactionApplier::apply(*m_document, &undoManager()), 0);
    EXPECT_FALSE(undoManager().canUndo());
    EXPECT_EQ(m_document->pdfDocument()->string(), QStringLiteral("First\f\fThird\f\f"));
}

TEST_F(RedactionTest, manyPagesShowHowFarTheyAreAndCanBeCancelled) {
    PdfFixture pdf;
    for (int page = 0; page < 4; ++page) {
        pdf.addPage({QStringLiteral("Words")});
        pdf.addAnnotation(page, "<< /Subtype /Square /Rect [60 700 200 740] /Contents (" +
                                    RedactionMarkerAnnotation::marker.toLatin1() + ") >>");
    }
    openFile(pdf.bytes());
    ASSERT_TRUE(QTest::qWaitFor([this] { return button(QStringLiteral("applyRedactions"))->isVisible(); }));
    for (const bool cancels : {true, false}) {
        press(QStringLiteral("applyRedactions"));
        const QPointer progress(find<QProgressDialog>(*m_workspace, QStringLiteral("redactionProgress")));
        ASSERT_TRUE(progress);
        EXPECT_EQ(progress->labelText(), QStringLiteral("Redacting page 1 of 4"));
        m_workspace->confirmApplyRedactions(); // it runs already
        if (cancels)
            progress->cancel();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !progress; }, 20'000));
        EXPECT_EQ(undoManager().canUndo(), !cancels);
        EXPECT_EQ(page()->string(), cancels ? QStringLiteral("Words") : QString());
    }
    EXPECT_EQ(m_document->pdfDocument()->string(), QStringLiteral("\f\f\f\f"));
}
