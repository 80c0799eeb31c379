#include "RedactionMarkerAnnotation.h"
#include "ViewerTest.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>

namespace {

class AnnotatingPDFViewTest : public ViewerTest {
protected:
    /// Clicks with the right button and chooses an entry of the menu that comes up. Gives the titles of all, and of the
    /// last one's submenu.
    QStringList choose(QPoint viewPoint, const QString& title = {}) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, viewPoint, m_view.viewport()->mapToGlobal(viewPoint));
        QApplication::sendEvent(m_view.viewport(), &event);
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return {};
        EXPECT_FALSE(menu->accessibleName().isEmpty());
        QList<QAction*> actions = menu->actions();
        if (const QMenu* const submenu = actions.last()->menu())
            actions += submenu->actions();
        QStringList titles;
        for (const QAction* action : actions)
            titles << (action->isSeparator() ? QStringLiteral("-") : action->text().remove(u'&').section(u'\t', 0, 0));
        menu->close();
        if (QAction* const chosen = actions.value(titles.indexOf(title)))
            chosen->trigger();
        return titles;
    }
};

TEST_F(AnnotatingPDFViewTest, showsTheWordsOfAnnotationsOnlyWhereTheyAreMeantForPeople) {
    const auto annotation = std::make_shared<PDFAnnotation>(QRectF(100, 400, 50, 50), PDFAnnotationSubtype::square);
    annotation->setInteriorColor(QColor(Qt::yellow));
    page()->addAnnotation(annotation);
    const std::tuple<QString, AnnotationTool, bool> cases[] = {
        {QStringLiteral("Why?"), AnnotationTool::select, true},
        {QStringLiteral("Why?"), AnnotationTool::ink, false},
        {RedactionMarkerAnnotation::marker, AnnotationTool::select, false}};
    for (const auto& [words, tool, isRead] : cases) {
        annotation->setContents(words);
        m_toolState->setTool(tool);
        click({125, 425});
        EXPECT_EQ(openEditor() && openEditor()->toPlainText().endsWith(words), isRead) << words.toStdString();
    }
}

TEST_F(AnnotatingPDFViewTest, marksEachSelectedLineOfEachPageAndUndoesAllInOneStep) {
    EXPECT_FALSE(m_view.applyMarkup(PDFAnnotationSubtype::highlight)) << "nothing is selected";
    m_toolState->setColor(QColor(10, 200, 30));
    select(0, 1, 1, 0);
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    endTurn();
    EXPECT_FALSE(m_view.hasSelection());
    const auto made = annotations();
    ASSERT_EQ(made.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(made[i]->color(), QColor(10, 200, 30));
        expectNear(made[i]->bounds(), line(int(i) + 1), 1);
    }
    m_undoManager->undo();
    expectUntouched();
    EXPECT_TRUE(page(1)->annotations().empty());
    m_undoManager->redo();
    EXPECT_EQ(annotations(), made);
    m_view.setDocUndoManager(nullptr);
    select(0, 0, 0, 0);
    EXPECT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::strikeOut)) << "also where nothing can be undone";
}

TEST_F(AnnotatingPDFViewTest, theMenuOfSelectedTextMarksCopiesAndAsksTheAssistant) {
    const QPoint elsewhere(5, m_view.viewport()->height() - 5);
    const auto chooseFor = [&](int line, const QString& title) {
        select(0, line, 0, line);
        return choose(elsewhere, title);
    };
    const std::pair<QString, QString> marks[] = {{QStringLiteral("Highlight"), PDFAnnotationSubtype::highlight},
                                                 {QStringLiteral("Underline"), PDFAnnotationSubtype::underline},
                                                 {QStringLiteral("Strikethrough"), PDFAnnotationSubtype::strikeOut}};
    for (const auto& [title, subtype] : marks) {
        EXPECT_EQ(chooseFor(1, title).join(u',').toStdString(), "Highlight,Underline,Strikethrough,-,Copy");
        EXPECT_EQ(annotations().at(annotations().size() - 1)->type(), subtype);
    }
    QString asked;
    QString sent;
    m_view.onAskAI = [&](const QString& prompt, bool send) {
        asked += prompt + u'\n';
        sent += send ? u'1' : u'0';
    };
    const QStringList titles = chooseFor(2, QStringLiteral("Copy"));
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("Third"));
    for (const QString& title : titles.mid(titles.indexOf(QStringLiteral("Ask AI")) + 1))
        chooseFor(2, title);
    m_view.setToolState(nullptr);
    EXPECT_FALSE(chooseFor(2, {}).contains(QStringLiteral("Highlight")));
    EXPECT_EQ(sent.toStdString(), "1111100") << "what is to be completed isn't sent";
    EXPECT_TRUE(asked.endsWith(QStringLiteral("Translate this to <language>: “Third”\nThird\n")));
}

TEST_F(AnnotatingPDFViewTest, markupIsAsHighAsTheFontOfTheLineKeepsOffItsNeighboursAndTurnsWithTheText) {
    PdfFixture fixture;
    fixture.addPageWithContent("BT /F1 12 Tf 1 0 0 1 90 700 Tm (Plain words of a line) Tj\n"
                               "1 0 0 1 72 660 Tm /F1 24 Tf (-) Tj /F1 12 Tf ( A bullet) Tj 6 Ts /F1 9 Tf (12) Tj\n"
                               "0 Ts /F1 12 Tf ( and a note) Tj 1 0 0 1 72 600 Tm (Lines that stand) Tj\n"
                               "1 0 0 1 72 591 Tm (close to the last) Tj 1 0 0 1 72 582 Tm (one or the next) Tj\n"
                               "1 0 0 1 72 500 Tm (a =          b) Tj /F1 8 Tf 1 0 0 1 100 502 Tm (n) Tj\n"
                               "/F1 20 Tf 0 1 -1 0 400 100 Tm (Up the sheet) Tj ET",
                               fixture.defaultResources());
    show(fixture);
    m_view.selectAll();
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    ASSERT_EQ(annotations().size(), 7U) << "the exponent isn't marked twice";
    std::vector<QRectF> boxes;
    for (const auto& marked : annotations())
        boxes.push_back(marked->quadrilateralPoints().at(0).boundingRect());
    EXPECT_NEAR(boxes[1].left(), 72, 2) << "with the bullet";
    EXPECT_NEAR(boxes[1].top(), boxes[0].top() - 40, 0.01);
    EXPECT_NEAR(boxes[1].bottom(), boxes[0].bottom() - 40, 0.01);
    for (std::size_t i = 2; i < 4; ++i)
        EXPECT_NEAR(boxes[i].top(), boxes[i + 1].bottom(), 0.01) << "neither a gap nor a seam";
    const PDFQuad turned = annotations().back()->quadrilateralPoints().at(0);
    EXPECT_NEAR(turned.lowerLeft.x(), turned.lowerRight.x(), 0.01) << "the line below the text runs up the page";
}

TEST_F(AnnotatingPDFViewTest, noMenuComesUpInTheMiddleOfADrag) {
    QWindow* const window = m_view.windowHandle();
    const auto at = [this](QPointF point) { return m_view.viewport()->mapTo(&m_view, onScreen(point).toPoint()); };
    m_toolState->setTool(AnnotationTool::rectangle);
    QTest::mousePress(window, Qt::LeftButton, {}, at({100, 500}));
    QTest::mouseClick(window, Qt::RightButton, {}, at({200, 560}));
    EXPECT_FALSE(QApplication::activePopupWidget());
    QTest::mouseRelease(window, Qt::LeftButton, {}, at({200, 560}));
    EXPECT_NEAR(annotations().at(0)->bounds().width(), 100, 2);
}

TEST_F(AnnotatingPDFViewTest, aModeMarksEachSelectionWhenTheButtonIsReleased) {
    m_toolState->setActiveMarkupMode(MarkupAction::strikethrough);
    const QRectF words = line(1);
    drag({{words.left() + 1, words.center().y()}, words.center()});
    EXPECT_EQ(annotations().at(0)->type(), PDFAnnotationSubtype::strikeOut);
    doubleClick({words.left() + 3, words.center().y()}); // a word
    click({300, 200});                                   // where nothing is selected
    EXPECT_EQ(annotations().size(), 2U);
    m_toolState->setTool(AnnotationTool::rectangle);
    select(0, 0, 0, 0);
    click({300, 200});
    EXPECT_EQ(annotations().size(), 2U) << "another tool doesn't mark";
}

TEST_F(AnnotatingPDFViewTest, thePageMenuAddsNotesAndTextAndReadsThePage) {
    const QString extract = QStringLiteral("Extract Text with AI (OCR)");
    const QString summarize = QStringLiteral("Summarize This Page");
    const QPoint spot = onScreen({300, 500}).toPoint();
    EXPECT_FALSE(choose(spot).contains(summarize)) << "nobody is there to ask";
    QStringList told;
    m_view.onAskAI = [&told](const QString& prompt, bool send) { told << prompt + QString::number(send); };
    m_view.onTextExtracted = [&told](const QString& text) { told << text; };
    m_toolState->setTool(AnnotationTool::ink);
    EXPECT_EQ(choose(spot, QStringLiteral("Add Note Here")).join(u',').toStdString(),
              "Add Note Here,Add Text Box Here,-,Ask AI,Summarize This Page,Extract Text with AI (OCR)");
    EXPECT_LT((annotations().at(0)->bounds().center() - QPointF(300, 500)).manhattanLength(), 3);
    choose(spot, QStringLiteral("Add Text Box Here"));
    EXPECT_TRUE(annotations().empty()) << "the empty new note goes";
    QTest::keyClicks(openEditor(), QStringLiteral("typed"));
    QTest::keyClick(openEditor(), Qt::Key_Return);
    EXPECT_EQ(annotations().at(0)->contents(), QStringLiteral("typed"));

    const auto chosen = [&](const QString& title) {
        told.clear();
        choose(spot, title);
        EXPECT_TRUE(QTest::qWaitFor([&told] { return !told.isEmpty(); }, 60'000));
        return told.value(0).toStdString();
    };
    EXPECT_EQ(chosen(summarize),
              "Summarize page 1: “First line of page one\nSecond line, a longer one\nThird\nFourth line”1");
    page()->removeAnnotation(annotations()[0]);
    EXPECT_TRUE(QString::fromStdString(chosen(extract)).contains(QStringLiteral("Second line, a longer one")));
    EXPECT_EQ(QApplication::clipboard()->text(), told.value(0));
    PdfFixture blank;
    blank.addPage({});
    show(blank);
    EXPECT_TRUE(chosen(summarize).starts_with("Page 1 has no extractable text"));
    EXPECT_EQ(chosen(extract), "No text could be recognized on this page.");
}

} // namespace
