#include "ViewerTest.h"

using DrawingTools = ViewerTest;

TEST_F(DrawingTools, aDragDrawsAClickLeavesNothingAndAllIsUndoneInItsOrder) {
    const QRectF dragged(200, 400, 100, 100);
    const std::tuple<AnnotationTool, QString, QRectF> cases[] = {
        {AnnotationTool::ink, PDFAnnotationSubtype::ink, dragged.adjusted(-6, -6, 6, 6)}, // width and 2 points around
        {AnnotationTool::rectangle, PDFAnnotationSubtype::square, dragged},
        {AnnotationTool::oval, PDFAnnotationSubtype::circle, dragged},
        {AnnotationTool::redact, PDFAnnotationSubtype::square, dragged},
        {AnnotationTool::form, PDFAnnotationSubtype::widget, dragged},
        {AnnotationTool::line, PDFAnnotationSubtype::line, {192.5, 394.5, 113, 113}}}; // with the diamond
    m_toolState->setColor(QColor(200, 30, 60));
    m_toolState->setLineWidth(4);
    m_toolState->setLineEndStyle(PDFLineStyle::diamond);
    int markers = 0;
    m_view.onRedactionDrawn = [&markers] { ++markers; };
    select(0, 0, 0, 0);
    Annotations left;
    for (const auto& [tool, type, bounds] : cases) {
        m_toolState->setTool(tool);
        click({100, 500});
        EXPECT_EQ(annotations(), left);
        drag({{300, 400}, {280, 420}, {200, 500}});
        left = annotations();
        const PDFAnnotation& made = *left.back();
        EXPECT_EQ(made.type(), type);
        EXPECT_EQ(made.color(), QColor(200, 30, 60));
        EXPECT_EQ(made.border().value().lineWidth, 4);
        expectNear(made.bounds(), bounds, tool == AnnotationTool::line ? 5 : 0.01);
    }
    EXPECT_TRUE(m_view.hasSelection()) << "a tool selects no text";
    EXPECT_EQ(markers, 1);
    expectNear(QRectF(left.back()->startPoint(), left.back()->endPoint()), QRectF(300, 400, -100, 100));

    m_toolState->setTool(AnnotationTool::eraser);
    click({250, 450});
    EXPECT_TRUE(annotations().empty());
    for (; !left.empty(); left.pop_back()) {
        m_undoManager->undo();
        EXPECT_EQ(annotations(), left);
    }
    m_undoManager->undo();
    expectUntouched();
}

TEST_F(DrawingTools, aStrokeIsSmoothAndAFingerDrawsAllOfAShortOne) {
    m_toolState->setTool(AnnotationTool::ink);
    drag({{100, 300}, {140, 380}, {190, 300}, {240, 380}});
    const QPainterPath path = annotations().at(0)->paths().at(0).translated(annotations()[0]->bounds().topLeft());
    const std::pair<int, QPointF> elements[] = {{0, {100, 300}}, {1, {140, 380}}, {3, {165, 340}}, {7, {240, 380}}};
    for (const auto& [element, point] : elements)
        EXPECT_LT((path.elementAt(element) - point).manhattanLength(), 0.01) << element;
    static QPointingDevice* const screen = QTest::createTouchDevice(); // nobody deletes it
    const QPoint start = m_view.viewport()->mapTo(&m_view, QPoint(100, 300));
    QTest::touchEvent(&m_view, screen).press(0, start);
    for (const QPoint way : {QPoint(4, 7), QPoint(8, 0)})
        QTest::touchEvent(&m_view, screen).move(0, start + way);
    QTest::touchEvent(&m_view, screen).release(0, start + QPoint(8, 0));
    const QRectF drawn = m_view.convertFromPage(annotations().at(1)->paths()[0].boundingRect(), *page());
    EXPECT_NEAR(drawn.width(), 8, 1);
    EXPECT_NEAR(drawn.height(), 7, 2) << "a smooth line cuts corners";
}

TEST_F(DrawingTools, aDragEndsWithWhatComesNext) {
    const auto begin = [this] {
        m_toolState->setTool(AnnotationTool::rectangle);
        press({100, 500});
        moveTo({160, 520});
    };
    const auto expectShapes = [&](std::size_t count, const char* what) {
        endTurn();
        EXPECT_EQ(annotations().size(), count) << what;
        for (const auto& each : Annotations(annotations())) {
            EXPECT_EQ(each->bounds().width(), 60) << what;
            m_undoManager->undo();
        }
        expectUntouched(what);
        begin();
    };
    begin();
    release({160, 520});
    mouse(QEvent::MouseButtonDblClick, {100, 510}, Qt::LeftButton, Qt::LeftButton);
    moveTo({160, 530});
    release({160, 530});
    expectShapes(2, "the second of two quick presses draws again");
    m_toolState->setTool(AnnotationTool::select);
    moveTo({300, 600});
    release({300, 600});
    expectShapes(1, "another tool keeps what is drawn");
    hover({300, 600});
    expectShapes(1, "a menu has got the release");
    drag({{200, 500}, {260, 520}});
    expectShapes(2, "the release was lost");
    QTest::keyClick(&m_view, Qt::Key_Escape);
    EXPECT_EQ(m_toolState->tool(), AnnotationTool::select);
    moveTo({200, 540});
    release({200, 540});
    expectShapes(0, "Escape gives it up");
    m_document->removePage(0); // under the pointer
    moveTo({160, 530});
    release({160, 530});
    expectUntouched();
}

TEST_F(DrawingTools, aSignatureKeepsItsShapeWhereverItIsDragged) {
    m_toolState->setTool(AnnotationTool::signature);
    drag({{100, 500}, {300, 400}});
    EXPECT_TRUE(annotations().empty()) << "there is no signature yet";
    addSignatureTwiceAsWideAsHigh();
    const std::pair<std::vector<QPointF>, QRectF> cases[] = {{{{100, 500}, {300, 400}}, {100, 400, 200, 100}},
                                                             {{{300, 500}, {200, 560}}, {200, 450, 100, 50}},
                                                             {{{300, 500}, {295, 500}}, {276, 488, 24, 12}}};
    for (const auto& [way, bounds] : cases) {
        drag(way);
        expectNear(annotations().at(0)->bounds(), bounds);
        m_undoManager->undo();
    }
}

TEST_F(DrawingTools, formFieldsAreNumberedAsTheyAreBegun) {
    m_toolState->setTool(AnnotationTool::form);
    drag({{100, 500}, {200, 520}});
    m_toolState->setFormFieldMode(FormFieldMode::checkbox);
    page()->setRotation(90);
    endTurn();
    click({100, 400});
    drag({{100, 400}, {120, 420}});
    const PDFAnnotation& text = *annotations().at(0);
    EXPECT_TRUE(text.fieldName().startsWith(QStringLiteral("text_")));
    const PDFAnnotation& box = *annotations().at(1);
    const int number = text.fieldName().section(u'_', 1).toInt() + 2; // the click used one up
    EXPECT_EQ(box.fieldName(), QStringLiteral("checkbox_%1").arg(number));
    EXPECT_EQ(box.buttonWidgetState(), PDFWidgetCellState::off);
    EXPECT_EQ(box.widgetRotation(), 90);
}

TEST_F(DrawingTools, notesAreMadeMovedAndOpened) {
    m_toolState->setTool(AnnotationTool::note);
    click({300, 500});
    const auto note = annotations().at(0);
    const auto expectAt = [&note](double x, double y) { expectNear(note->bounds(), QRectF(x, y, 120, 80)); };
    QTest::keyClicks(openEditor(), QStringLiteral("Ask Ann"));
    m_toolState->setTool(AnnotationTool::select);
    click({50, 200});
    EXPECT_EQ(note->contents(), QStringLiteral("Ask Ann"));
    click({250, 470}); // which costs nothing
    drag({{250, 470}, {260, 480}, {150, 370}});
    expectAt(140, 360);
    m_undoManager->undo();
    expectAt(240, 460);
    m_undoManager->redo();
    press({150, 370});
    moveTo({400, 600});
    QTest::keyClick(&m_view, Qt::Key_Escape);
    release({400, 600});
    expectAt(140, 360);
    doubleClick({150, 370});
    EXPECT_TRUE(openEditor());

    show(PDFDocument::fromData(m_document->dataRepresentation()));
    drag({{150, 370}, {190, 410}});
    doubleClick({150, 370});
    expectNear(annotations().at(0)->bounds(), QRectF(140, 360, 120, 80)); // a sign like any other
    EXPECT_FALSE(openEditor());
}

TEST_F(DrawingTools, placedThingsHaveTheirSizeAndTheirCornersAsThePageIsSeen) {
    addSignatureTwiceAsWideAsHigh();
    for (const char* rotation : {"0", "90", "180", "270"}) {
        SCOPED_TRACE(rotation);
        PdfFixture fixture;
        fixture.addPage({QStringLiteral("A line of text")});
        fixture.setPageKey(0, "/Rotate", rotation);
        fixture.setPageKey(0, "/UserUnit", "2");
        show(fixture);
        const QTransform toSeen = page()->displayTransform(PDFDisplayBox::cropBox);
        const QPointF point(300, 400);
        const QPointF seen = toSeen.map(point);
        const auto expectSeen = [&](double x, double y, double width, double height) {
            expectNear(toSeen.mapRect(annotations().back()->bounds()), QRectF(x, y, width, height));
        };
        m_toolState->setTool(AnnotationTool::note);
        click(point);
        expectSeen(seen.x() - 60, seen.y() - 40, 120, 80);
        m_view.commitEditors();
        m_view.addProgrammaticNote(QStringLiteral("note"), page());
        expectSeen(page()->displaySize(PDFDisplayBox::cropBox).width() - 140, 20, 120, 80);
        m_toolState->setTool(AnnotationTool::signature);
        click(point);
        expectSeen(seen.x(), seen.y(), 160, 80);
        m_toolState->setTool(AnnotationTool::select);
        m_toolState->setTextEditingModeEnabled(true);
        click(page()->text()->lines[0].bounds.center());
        m_view.commitEditors();
        EXPECT_NEAR(annotations().back()->font()->pointSizeF(), 24, 0.1);
        m_toolState->setTextEditingModeEnabled(false);
    }
}
