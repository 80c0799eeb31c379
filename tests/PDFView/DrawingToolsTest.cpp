#include "LineAnnotation.h"
#include "NoteAnnotation.h"
#include "PDFSelection.h"
#include "RedactionMarkerAnnotation.h"
#include "SignatureAnnotation.h"
#include "SignatureStore.h"
#include "ViewerTest.h"

#include <cmath>
#include <random>

namespace {

class DrawingTools : public ViewerTest {
protected:
    static void expectRect(const QRectF& rect, double x, double y, double width, double height) {
        expectNear(rect, QRectF(x, y, width, height));
    }
    /// Begins a shape of 60 by 20 points.
    void beginShape() {
        press({100, 500});
        moveTo({160, 520});
    }
    /// A signature twice as wide as high.
    void keepSignature() {
        QImage image(200, 100, QImage::Format_ARGB32);
        image.fill(Qt::black);
        m_toolState->signatureStore()->add(image);
    }
};

} // namespace

TEST_F(DrawingTools, aDragDrawsAndAClickLeavesNothing) {
    const std::pair<AnnotationTool, QString> cases[] = {{AnnotationTool::ink, PDFAnnotationSubtype::ink},
                                                        {AnnotationTool::rectangle, PDFAnnotationSubtype::square},
                                                        {AnnotationTool::oval, PDFAnnotationSubtype::circle},
                                                        {AnnotationTool::line, PDFAnnotationSubtype::line},
                                                        {AnnotationTool::redact, PDFAnnotationSubtype::square},
                                                        {AnnotationTool::form, PDFAnnotationSubtype::widget}};
    m_toolState->setColor(QColor(200, 30, 60));
    m_toolState->setLineWidth(4);
    m_toolState->setLineEndStyle(PDFLineStyle::diamond);
    int markers = 0;
    m_view.onRedactionDrawn = [&markers] { ++markers; };
    for (const auto& [tool, type] : cases) {
        m_toolState->setTool(tool);
        click({100, 500});
        EXPECT_FALSE(m_undoManager->canUndo());
        select(0, 0, 0, 0);
        drag({{300, 400}, {280, 420}, {200, 500}});
        ASSERT_EQ(annotations().size(), 1U) << type.toStdString();
        const std::shared_ptr<PDFAnnotation> made = annotations()[0];
        EXPECT_EQ(made->type(), type);
        EXPECT_EQ(made->color(), QColor(200, 30, 60));
        EXPECT_EQ(made->border().value().lineWidth, 4);
        if (tool == AnnotationTool::line) {
            expectRect(QRectF(made->startPoint(), made->endPoint()), 300, 400, -100, 100);
            EXPECT_EQ(made->endLineStyle(), PDFLineStyle::diamond);
            EXPECT_EQ(made->startLineStyle(), PDFLineStyle::none);
            EXPECT_TRUE(made->bounds().contains(QRectF(195, 399, 106, 106))) << "with the diamond";
            EXPECT_TRUE(QRectF(190, 390, 120, 120).contains(made->bounds()));
        } else if (tool == AnnotationTool::ink) {
            expectRect(made->bounds(), 194, 394, 112, 112); // the line's width and 2 points all around
        } else {
            expectRect(made->bounds(), 200, 400, 100, 100);
        }
        EXPECT_TRUE(m_view.hasSelection()) << "a tool selects no text";
        m_undoManager->undo();
        EXPECT_TRUE(annotations().empty());
        m_undoManager->removeAllActions();
    }
    EXPECT_EQ(markers, 1);
}

TEST_F(DrawingTools, aStrokeIsSmoothAndRunsFromItsFirstPointToItsLast) {
    m_toolState->setTool(AnnotationTool::ink);
    drag({{100, 300}, {140, 380}, {190, 300}, {240, 380}});
    const auto& ink = *annotations().at(0);
    const QPainterPath path = ink.paths().at(0).translated(ink.bounds().topLeft());
    const std::pair<int, QPointF> elements[] = {
        {0, {100, 300}}, {1, {140, 380}}, {3, {165, 340}}, {6, {215, 340}}, {7, {240, 380}}};
    for (const auto& [element, point] : elements)
        EXPECT_LT((path.elementAt(element) - point).manhattanLength(), 0.01) << element;
}

TEST_F(DrawingTools, aFingerDrawsAllOfAStrokeHoweverShort) {
    m_toolState->setTool(AnnotationTool::ink);
    static QPointingDevice* const screen = QTest::createTouchDevice();
    const std::vector<std::vector<QPoint>> ways{{{100, 300}, {104, 306}, {108, 300}},
                                                {{200, 300}, {206, 309}, {214, 300}, {240, 300}},
                                                {{100, 300}, {101, 301}}}; // a finger that is only put down
    for (const auto& way : ways) {
        const auto at = [this](QPoint point) { return m_view.viewport()->mapTo(&m_view, point); };
        QTest::touchEvent(&m_view, screen).press(0, at(way.front()));
        for (const QPoint& point : way)
            QTest::touchEvent(&m_view, screen).move(0, at(point));
        QTest::touchEvent(&m_view, screen).release(0, at(way.back()));
        ASSERT_EQ(annotations().size(), way.size() > 2 ? 1U : 0U);
        if (annotations().empty())
            continue;
        // The height of its first turn tells whether that was drawn.
        const QRectF drawn = m_view.convertFromPage(
            annotations()[0]->paths()[0].boundingRect().translated(annotations()[0]->bounds().topLeft()), *page());
        EXPECT_NEAR(drawn.width(), way.back().x() - way.front().x(), 1);
        EXPECT_NEAR(drawn.height(), way[1].y() - way[0].y(), 2) << "a smooth line cuts corners";
        m_undoManager->undo();
    }
}

TEST_F(DrawingTools, aDragEndsWithWhatComesNext) {
    const struct {
        const char* what;
        std::function<void()> next;
        std::size_t count = 1;
    } cases[] = {
        {"the second of two quick presses draws again",
         [this] {
             release({160, 520});
             mouse(QEvent::MouseButtonDblClick, {100, 510}, Qt::LeftButton, Qt::LeftButton);
             moveTo({160, 530});
             release({160, 530});
         },
         2},
        {"another tool keeps what is drawn",
         [this] {
             m_toolState->setTool(AnnotationTool::select);
             moveTo({300, 600});
             release({300, 600});
         }},
        {"a menu has got the release",
         [this] {
             hover({300, 600});
         }},
        {"the release was lost",
         [this] {
             drag({{200, 500}, {260, 520}});
         },
         2},
        {"Escape gives it up",
         [this] {
             QTest::keyClick(&m_view, Qt::Key_Escape);
             EXPECT_EQ(m_toolState->tool(), AnnotationTool::select);
             moveTo({200, 540});
             release({200, 540});
         },
         0},
    };
    for (const auto& [what, next, count] : cases) {
        m_toolState->setTool(AnnotationTool::rectangle);
        beginShape();
        EXPECT_EQ(annotations().size(), 1U);
        next();
        endTurn();
        ASSERT_EQ(annotations().size(), count) << what;
        for (const auto& each : annotations())
            EXPECT_EQ(each->bounds().width(), 60) << what;
        for (std::size_t left = count; left > 0; --left)
            m_undoManager->undo();
        EXPECT_TRUE(annotations().empty()) << what;
        EXPECT_FALSE(m_undoManager->canUndo()) << what;
    }
    // A page that goes under the pointer takes the shape along.
    m_toolState->setTool(AnnotationTool::ink);
    beginShape();
    m_document->removePage(0);
    moveTo({160, 530});
    release({160, 530});
    EXPECT_TRUE(annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(DrawingTools, aSignatureKeepsItsShapeWhereverItIsDragged) {
    m_toolState->setTool(AnnotationTool::signature);
    drag({{100, 500}, {300, 400}});
    EXPECT_TRUE(annotations().empty()) << "there is no signature yet";
    keepSignature();
    const struct {
        std::vector<QPointF> way;
        QRectF bounds;
    } cases[] = {{{{100, 500}}, {100, 420, 160, 80}},
                 {{{100, 500}, {300, 400}}, {100, 400, 200, 100}},
                 {{{300, 500}, {200, 560}}, {200, 450, 100, 50}},
                 {{{300, 500}, {295, 500}}, {276, 488, 24, 12}}};
    for (const auto& [way, bounds] : cases) {
        drag(way);
        EXPECT_TRUE(std::dynamic_pointer_cast<SignatureAnnotation>(annotations().at(0)));
        expectNear(annotations()[0]->bounds(), bounds);
        m_undoManager->undo();
        EXPECT_TRUE(annotations().empty());
    }
}

TEST_F(DrawingTools, formFieldsAreNumberedAsTheyAreBegun) {
    m_toolState->setTool(AnnotationTool::form);
    const auto numberOf = [](const PDFAnnotation& field) { return field.fieldName().section(u'_', 1).toInt(); };
    drag({{100, 500}, {200, 520}});
    m_toolState->setFormFieldMode(FormFieldMode::checkbox);
    click({100, 400});
    drag({{100, 400}, {120, 420}});
    ASSERT_EQ(annotations().size(), 2U);
    const auto& text = *annotations()[0];
    const auto& box = *annotations()[1];
    EXPECT_EQ(text.fieldName().section(u'_', 0, 0), QStringLiteral("text"));
    EXPECT_EQ(box.fieldName().section(u'_', 0, 0), QStringLiteral("checkbox"));
    EXPECT_EQ(numberOf(box), numberOf(text) + 2) << "the click used one up";
    EXPECT_EQ(text.widgetFieldType(), PDFWidgetFieldType::text);
    EXPECT_EQ(box.widgetControlType(), PDFWidgetControlType::checkBox);
    EXPECT_EQ(box.buttonWidgetState(), PDFWidgetCellState::off);
    page()->setRotation(90);
    endTurn();
    drag({{300, 400}, {320, 420}});
    ASSERT_EQ(annotations().size(), 3U);
    EXPECT_EQ(annotations()[2]->widgetRotation(), 90);
}

TEST_F(DrawingTools, notesAreMadeMovedAndOpened) {
    m_toolState->setTool(AnnotationTool::note);
    click({300, 500});
    const auto note = annotations().at(0);
    expectRect(note->bounds(), 240, 460, 120, 80);
    ASSERT_TRUE(openEditor());
    QTest::keyClicks(openEditor(), QStringLiteral("Ask Ann"));
    m_toolState->setTool(AnnotationTool::select);
    click({50, 200});
    EXPECT_EQ(note->contents(), QStringLiteral("Ask Ann")) << "the next press commits";
    EXPECT_FALSE(openEditor());

    m_undoManager->removeAllActions();
    click({300, 500});
    EXPECT_FALSE(m_undoManager->canUndo()) << "a click costs nothing";
    drag({{250, 470}, {260, 480}, {150, 370}});
    expectRect(note->bounds(), 140, 360, 120, 80);
    m_undoManager->undo();
    expectRect(note->bounds(), 240, 460, 120, 80);
    m_undoManager->redo();
    press({150, 370});
    moveTo({400, 600});
    QTest::keyClick(&m_view, Qt::Key_Escape);
    release({400, 600});
    expectRect(note->bounds(), 140, 360, 120, 80);
    press({150, 370});
    moveTo({160, 380});
    hover({300, 600});
    expectRect(note->bounds(), 150, 370, 120, 80);

    doubleClick({160, 400});
    EXPECT_TRUE(openEditor());
    m_view.commitEditors();
    m_view.addProgrammaticNote(QStringLiteral("from the assistant"), page());
    expectRect(annotations().back()->bounds(), 612 - 140, 792 - 100, 120, 80);
    EXPECT_FALSE(openEditor());

    show(PDFDocument::fromData(m_document->dataRepresentation()));
    const QRectF before = annotations().at(0)->bounds();
    drag({before.center(), before.center() + QPointF(40, 40)});
    doubleClick(before.center());
    EXPECT_EQ(annotations()[0]->bounds(), before) << "from a file it is a sign like any other";
    EXPECT_FALSE(openEditor());
}

TEST_F(DrawingTools, placedThingsHaveTheirSizeAndTheirCornersAsThePageIsSeen) {
    keepSignature();
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
            expectRect(toSeen.mapRect(annotations().back()->bounds()), x, y, width, height);
            EXPECT_NEAR(annotations().back()->uprightBounds().height(), height, 0.01);
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
        ASSERT_TRUE(openEditor());
        m_view.commitEditors();
        EXPECT_NEAR(annotations().back()->font()->pointSizeF(), 24, 0.1);
        EXPECT_EQ(annotations().back()->values().frame, (PDFAnnotationFrame{page()->rotation(), 2}));
        m_toolState->setTextEditingModeEnabled(false);
    }
}

TEST_F(DrawingTools, everyActionComesBackAThousandTimesOver) {
    keepSignature();
    std::mt19937 random(99);
    const auto pick = [&random](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    const auto somewhere = [&] { return QPointF(60 + pick(450), 320 + pick(400)); };
    const AnnotationTool tools[] = {AnnotationTool::ink,       AnnotationTool::line,   AnnotationTool::form,
                                    AnnotationTool::signature, AnnotationTool::eraser, AnnotationTool::select};
    const auto state = [this] {
        std::vector<std::pair<std::shared_ptr<PDFAnnotation>, QRectF>> now;
        for (const auto& annotation : annotations())
            now.emplace_back(annotation, annotation->bounds());
        return now;
    };
    // The states in the order in which undo passes them.
    std::vector states(1, state());
    m_view.addProgrammaticNote(QStringLiteral("note"), page());
    endTurn();
    states.push_back(state());
    for (int i = 0; i < 60; ++i) {
        const AnnotationTool tool = tools[pick(int(std::size(tools)))];
        m_toolState->setTool(tool);
        m_toolState->setEraserMode(pick(2) == 0 ? EraserMode::precise : EraserMode::wholeStroke);
        m_toolState->setEraserSize(10);
        const auto before = state();
        if (tool == AnnotationTool::eraser || tool == AnnotationTool::signature) {
            click(somewhere());
        } else if (tool == AnnotationTool::select) {
            for (const auto& [annotation, bounds] : before)
                if (std::dynamic_pointer_cast<NoteAnnotation>(annotation))
                    drag({bounds.center(), somewhere()});
        } else {
            drag({somewhere(), somewhere(), somewhere()});
        }
        if (state() != before)
            states.push_back(state());
    }
    std::size_t at = states.size() - 1;
    for (int step = 0; step < 1000; ++step) {
        const bool back = at == states.size() - 1 || (at > 0 && pick(2) == 0);
        back ? m_undoManager->undo() : m_undoManager->redo();
        at = back ? at - 1 : at + 1;
        ASSERT_EQ(state(), states[at]) << step;
    }
    while (m_undoManager->canUndo())
        m_undoManager->undo();
    EXPECT_EQ(state(), states.front());
    EXPECT_FALSE(m_undoManager->isDocumentEdited());
}
