#include "EraserCursorOverlay.h"
#include "InkPath.h"
#include "ViewerTest.h"
#include "WatermarkAnnotation.h"

#include <QPointingDevice>
#include <QTabletEvent>

namespace {

class EraserTest : public ViewerTest {
protected:
    EraserTest() { m_toolState->setTool(AnnotationTool::eraser); }

    /// A straight stroke from (100, 500) to (300, 500), with a point every 10.
    std::shared_ptr<PDFAnnotation> addRow() {
        std::vector<QPointF> points;
        for (int x = 100; x <= 300; x += 10)
            points.emplace_back(x, 500);
        auto stroke = InkPath::inkAnnotation(points, QColor(10, 120, 10), 3);
        page()->addAnnotation(stroke);
        return stroke;
    }
    void erase(double size, EraserMode mode, QPointF point) {
        m_toolState->setEraserSize(size);
        m_toolState->setEraserMode(mode);
        click(point);
    }
    [[nodiscard]] const EraserCursorOverlay& ring() const { return *m_view.findChild<EraserCursorOverlay*>(); }

    /// An event of the eraser end of a pen.
    void pen(QEvent::Type type, QPointF point, bool isDown) {
        static const QPointingDevice device(QStringLiteral("pen"), 7, QInputDevice::DeviceType::Stylus,
                                            QPointingDevice::PointerType::Eraser, QInputDevice::Capability::Pressure, 1,
                                            1);
        const QPointF at = onScreen(point);
        const bool isMove = type == QEvent::TabletMove;
        QTabletEvent event(type, &device, at, m_view.viewport()->mapToGlobal(at), isDown ? 0.5 : 0, 0, 0, 0, 0, 0,
                           Qt::NoModifier, isMove ? Qt::NoButton : Qt::LeftButton,
                           isDown ? Qt::LeftButton : Qt::NoButton);
        QCoreApplication::sendEvent(m_view.viewport(), &event);
    }
};

} // namespace

TEST_F(EraserTest, wholeStrokesGoWhereTheirBoundsAreTouched) {
    page()->addAnnotation(InkPath::inkAnnotation({{100, 400}, {200, 500}}, Qt::black, 3));
    for (const QPointF corner : {QPointF(180, 380), QPointF(400, 600)})
        page()->addAnnotation(
            std::make_shared<PDFAnnotation>(QRectF(corner, QSizeF(50, 50)), PDFAnnotationSubtype::square));
    const Annotations all = annotations();
    erase(10, EraserMode::wholeStroke, {185, 410}); // off the line, but within both bounds
    EXPECT_EQ(annotations(), std::vector{all[2]});
    m_undoManager->undo();
    erase(1, EraserMode::precise, {398.5, 620});
    EXPECT_EQ(annotations(), all) << "the radius is never below 1";
    erase(1, EraserMode::precise, {399.5, 620});
    EXPECT_EQ(annotations().size(), 2U) << "what is no stroke goes whole";
}

TEST_F(EraserTest, aWatermarkLeavesWhatIsBeneathToTheEraserAndGoesWhereItsLettersAre) {
    for (const bool isOfTheFile : {false, true}) {
        const QRectF seen = page()->bounds(PDFDisplayBox::cropBox);
        page()->addAnnotation(std::make_shared<WatermarkAnnotation>(QStringLiteral("HHHH"), 0.1, seen));
        if (isOfTheFile)
            show(PDFDocument::fromData(m_document->dataRepresentation()));
        const Annotations watermark = annotations();
        addRow();
        erase(10, EraserMode::wholeStroke, {150, 500});
        erase(10, EraserMode::precise, seen.center() + QPointF(100, -100));
        EXPECT_EQ(annotations(), watermark);
        erase(40, EraserMode::precise, seen.center() + QPointF(20, 20));
        EXPECT_TRUE(annotations().empty());
    }
}

TEST_F(EraserTest, aStrokeIsCutWhereTheCirclePasses) {
    const auto row = addRow();
    erase(30, EraserMode::precise, {200, 480}); // near, but not near enough
    EXPECT_FALSE(m_undoManager->canUndo());
    erase(30, EraserMode::precise, {200, 500});
    const Annotations pieces = annotations();
    ASSERT_EQ(pieces.size(), 2U);
    for (const auto& piece : pieces) {
        EXPECT_EQ(piece->color(), QColor(10, 120, 10));
        EXPECT_EQ(piece->userName(), row->userName());
        EXPECT_EQ(piece->border()->lineWidth, 3);
        EXPECT_FALSE(piece->bounds().adjusted(5, 0, -5, 0).contains(QPointF(200, 500)));
    }
    expectNear(pieces[0]->bounds() | pieces[1]->bounds(), row->bounds());
    click({300, 500});
    EXPECT_EQ(annotations().size(), 2U) << "an end leaves one shorter stroke";
    m_toolState->setEraserSize(4);
    for (int cut = 0; cut < 60; ++cut)
        click({110 + (cut * 37) % 180 + 0.5, 500});
    EXPECT_GT(annotations().size(), 10U);
    for (const auto& piece : annotations())
        EXPECT_LT(piece->paths()[0].elementCount(), 3 * 200 / 0.05) << "it grows with every cut";
}

TEST_F(EraserTest, eachPathOfAStrokeOfTheFileIsCutByItself) {
    PdfFixture fixture;
    fixture.addPage({});
    fixture.addAnnotation(0, "<< /Subtype /Ink /Rect [90 390 310 510] /InkList [[100 400 200 400 300 400] "
                             "[100 500 200 500 300 500]] >>");
    show(fixture);
    // Of the first path only a point is left on each side, so it goes; the other stays whole.
    erase(20, EraserMode::precise, {200, 400});
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_NEAR(annotations()[0]->bounds().center().y(), 500, 0.1);
}

TEST_F(EraserTest, aRingTakesThePlaceOfThePointer) {
    PdfFixture fixture;
    fixture.addPage({});
    fixture.setPageKey(0, "/UserUnit", "2");
    show(fixture);
    const auto shape = [this] { return m_view.viewport()->cursor().shape(); };
    hover({100, 700});
    EXPECT_EQ(ring().center(), onScreen({100, 700}));
    m_view.setScaleFactor(m_view.scaleFactor() * 2);
    m_toolState->setEraserSize(40);
    EXPECT_NEAR(ring().diameter(), 2 * 40 * m_view.scaleFactor(), 0.01) << "in units of the page";
    EXPECT_EQ(shape(), Qt::BlankCursor);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(m_view.viewport(), &leave);
    EXPECT_FALSE(ring().isVisible());
    EXPECT_EQ(shape(), Qt::ArrowCursor);
    hover({110, 700});
    m_toolState->setTool(AnnotationTool::rectangle);
    hover({111, 700});
    EXPECT_FALSE(ring().isVisible());
    EXPECT_EQ(shape(), Qt::CrossCursor);
}

TEST_F(EraserTest, theEraserEndOfAPenErasesWithAnyTool) {
    m_toolState->setTool(AnnotationTool::ink);
    m_toolState->setEraserMode(EraserMode::precise);
    addRow();
    pen(QEvent::TabletMove, {200, 500}, false);
    pen(QEvent::TabletPress, {200, 500}, true);
    pen(QEvent::TabletMove, {150, 500}, true);
    pen(QEvent::TabletRelease, {150, 500}, false);
    EXPECT_EQ(annotations().size(), 3U);
    EXPECT_TRUE(ring().isVisible());
    QEvent takenAway(QEvent::TabletLeaveProximity); // told to the program, not to the view
    QCoreApplication::sendEvent(qApp, &takenAway);
    EXPECT_FALSE(ring().isVisible());
}

TEST_F(EraserTest, whatOneDragErasesIsTakenBackAtOnce) {
    m_toolState->setEraserMode(EraserMode::precise);
    const auto row = addRow();
    for (const bool isReleased : {true, false}) {
        press({200, 500});
        for (const double x : {215, 230, 245}) {
            endTurn();
            moveTo({x, 500});
        }
        EXPECT_FALSE(m_undoManager->canUndo()) << "in the middle of it";
        isReleased ? release({245, 500}) : m_toolState->setTool(AnnotationTool::select); // which ends it as well
        endTurn();
        EXPECT_EQ(annotations().size(), 2U);
        m_undoManager->undo();
        EXPECT_EQ(annotations(), std::vector{row});
        EXPECT_FALSE(m_undoManager->canUndo());
    }
}
