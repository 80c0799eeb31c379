#include "PDFAnnotation.h"
#include "PageText.h"
#include "PassingNotice.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "RedactionApplier.h"
#include "RedactionMarkerAnnotation.h"
#include "UndoManager.h"
#include "WorkspaceTest.h"

#include <QPainter>
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
        m_document = opened(written(bytes, QStringLiteral("letter %1.pdf").arg(++m_files)));
        ASSERT_TRUE(m_document);
        showWorkspace();
    }
    [[nodiscard]] std::shared_ptr<PDFPage> page() const { return m_document->pdfDocument()->page(0); }
    [[nodiscard]] UndoManager& undoManager() const { return *m_document->undoManager(); }
    [[nodiscard]] bool isPending() const { return button(QStringLiteral("applyRedactions"))->isVisible(); }
    /// Draws a marker with the tool.
    void mark(const QRectF& area) {
        m_toolState->setTool(AnnotationTool::redact);
        const auto at = [this](QPointF point) { return m_view->convertFromPage(point, *page()).toPoint(); };
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, at(area.topLeft()));
        QTest::mouseMove(m_view->viewport(), at(area.bottomRight()));
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, at(area.bottomRight()));
        QCoreApplication::processEvents();
    }
    /// What a file says of a marker.
    [[nodiscard]] static QByteArray markerWith(const QByteArray& contents) {
        return "<< /Subtype /Square /Rect [60 700 200 740] /Contents " + contents + " >>";
    }
    const QByteArray m_contents = "(" + RedactionMarkerAnnotation::marker.toLatin1() + ")";
    int m_files = 0;
};

} // namespace

TEST_F(RedactionTest, whatIsMarkedIsGoneAndTheRestLooksAsBefore) {
    using Keys = std::vector<std::pair<const char*, const char*>>;
    const std::pair<const char*, Keys> cases[] = {
        {"plain", {}},
        {"turned, cropped", {{"/MediaBox", "[-50 20 562 812]"}, {"/CropBox", "[40 500 500 790]"}, {"/Rotate", "90"}}},
        {"large units", {{"/UserUnit", "2"}, {"/Rotate", "270"}, {"/CropBox", "[40 500 500 790]"}}}};
    for (const auto& [what, keys] : cases) {
        SCOPED_TRACE(what);
        PdfFixture pdf;
        pdf.addPage({QStringLiteral("Secret words"), QStringLiteral("Public words")});
        pdf.addAnnotation(0, "<< /Subtype /Square /Rect [72 600 120 640] /C [0 0 1] /Contents (SecretNote) >>");
        for (const auto& [key, value] : keys)
            pdf.setPageKey(0, key, value);
        openFile(pdf.bytes());
        const QImage before = shown(*page());
        const PDFPageGeometry geometry = page()->geometry();
        const QRectF area = page()->text()->lines.at(0).bounds.adjusted(-2, -2, 2, 2);
        const QTransform toSeen = page()->displayTransform(PDFDisplayBox::cropBox);
        const QRect hole = toSeen.mapRect(area).toAlignedRect().adjusted(-1, -1, 1, 1);
        mark(area);
        EXPECT_EQ(page()->string(), QString());
        EXPECT_EQ(page()->geometry(), geometry);
        const QImage after = shown(*page());
        ASSERT_EQ(after.size(), before.size());
        EXPECT_LT(difference(before, after, hole), 2);
        QImage blackened = after;
        QPainter(&blackened).fillRect(hole.adjusted(3, 3, -3, -3), Qt::black);
        EXPECT_EQ(after, blackened);
        EXPECT_TRUE(m_workspace->notice().message().startsWith(QStringLiteral("Redacted")));
        const QByteArray all = PdfPrograms::unpacked(m_document->pdfDocument()->dataRepresentation());
        EXPECT_FALSE(all.contains("Secret") || all.contains("Public"));
        m_workspace.reset();
    }
}

TEST_F(RedactionTest, markerAndRedactionAreTwoStepsAndARedoIsTheLastWord) {
    openWorkspace({.pageCount = 2});
    const auto original = page();
    mark({100, 300, 50, 40});
    EXPECT_NE(page(), original);
    undoManager().undo();
    EXPECT_EQ(page(), original);
    EXPECT_TRUE(QTest::qWaitFor([this] { return isPending(); })) << "the marker again";
    undoManager().undo();
    EXPECT_TRUE(page()->annotations().empty());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !isPending(); }));
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
    pdf.addAnnotation(0, markerWith(QByteArray(m_contents).replace(")", "s)")));
    pdf.addAnnotation(1, markerWith(m_contents));
    pdf.addAnnotation(2, markerWith(m_contents).replace("/Subtype /Square", "")); // no annotation without a kind
    pdf.addAnnotation(3, markerWith("<" + wide + ">"));
    openFile(pdf.bytes());
    EXPECT_EQ(RedactionApplier::unsearchedFiles(*m_document->pdfDocument()).size(), 1U);
    EXPECT_TRUE(QTest::qWaitFor([this] { return isPending(); })) << "although nobody has seen these pages";
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
        pdf.addAnnotation(page, markerWith(m_contents));
    }
    openFile(pdf.bytes());
    ASSERT_TRUE(QTest::qWaitFor([this] { return isPending(); }));
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
