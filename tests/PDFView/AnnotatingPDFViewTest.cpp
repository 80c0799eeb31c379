#include "NoteAnnotation.h"
#include "PDFSelection.h"
#include "RedactionMarkerAnnotation.h"
#include "ViewerTest.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTimer>

namespace {

class AnnotatingPDFViewTest : public ViewerTest {
protected:
    /// Clicks with the right button at a point of the viewport and lets `use` have the menu that comes up.
    void withMenu(QPoint viewPoint, const std::function<void(QMenu& menu)>& use) {
        bool isDone = false;
        QTimer::singleShot(0, &m_view, [&] {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (menu) {
                use(*menu);
                menu->close();
            }
            isDone = true;
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, viewPoint, m_view.viewport()->mapToGlobal(viewPoint));
        QApplication::sendEvent(m_view.viewport(), &event);
        EXPECT_TRUE(QTest::qWaitFor([&isDone] { return isDone; }));
    }

    /// The same for the menu of the assistant at its end.
    void withAssistant(QPoint viewPoint, const std::function<void(QMenu& menu)>& use) {
        withMenu(viewPoint, [&use](QMenu& menu) { use(*menu.actions().last()->menu()); });
    }

    static void choose(QMenu& menu, const QString& title) {
        QAction* const action = menu.actions().value(titles(menu).indexOf(title));
        ASSERT_NE(action, nullptr) << title.toStdString();
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(action).center());
    }

    static QStringList titles(const QMenu& menu) {
        QStringList titles;
        for (const QAction* action : menu.actions())
            titles << (action->isSeparator() ? QStringLiteral("-") : action->text().remove(u'&').section(u'\t', 0, 0));
        return titles;
    }
};

TEST_F(AnnotatingPDFViewTest, showsTheWordsOfAnnotationsOnlyWhereTheyAreMeantForPeople) {
    const auto panelAfterClick = [this](QPointF point) {
        click(point);
        return openEditor() ? openEditor()->toPlainText() : QString();
    };
    const auto remark = std::make_shared<PDFAnnotation>(QRectF(100, 400, 50, 50), PDFAnnotationSubtype::circle);
    remark->setContents(QStringLiteral("Why?"));
    const auto note = std::make_shared<NoteAnnotation>(QRectF(200, 400, 120, 80));
    note->setContents(QStringLiteral("mine"));
    const auto marker = std::make_shared<PDFAnnotation>(QRectF(400, 400, 50, 50), PDFAnnotationSubtype::square);
    marker->setContents(RedactionMarkerAnnotation::marker);
    for (const std::shared_ptr<PDFAnnotation>& each : {remark, std::shared_ptr<PDFAnnotation>(note), marker}) {
        each->setInteriorColor(QColor(Qt::yellow));
        page()->addAnnotation(each);
    }
    EXPECT_TRUE(panelAfterClick({125, 425}).endsWith(QStringLiteral("\nWhy?")));
    EXPECT_EQ(panelAfterClick({250, 440}), QString()) << "it shows its words by itself, and can be moved";
    EXPECT_EQ(panelAfterClick({425, 425}), QString());
    click({125, 425});
    m_toolState->setTool(AnnotationTool::eraser);
    EXPECT_FALSE(openEditor());
    m_toolState->setTool(AnnotationTool::ink);
    EXPECT_EQ(panelAfterClick({125, 425}), QString());
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
    EXPECT_EQ(page(1)->annotations().size(), 1U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(made[i]->color(), QColor(10, 200, 30));
        expectNear(made[i]->bounds(), line(int(i) + 1), 1);
    }
    const QByteArray saved = m_document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(PdfPrograms::unpacked(saved).count("/Subtype /Highlight"), 4);

    m_undoManager->undo();
    EXPECT_TRUE(annotations().empty() && page(1)->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
    m_undoManager->redo();
    EXPECT_EQ(annotations(), made);
    m_undoManager->removeAllActions();
    m_view.setDocUndoManager(nullptr);
    select(0, 0, 0, 0);
    EXPECT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::strikeOut)) << "also where nothing can be undone";
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(AnnotatingPDFViewTest, theMenuOfSelectedTextMarksCopiesAndAsksTheAssistant) {
    const QPoint elsewhere(5, m_view.viewport()->height() - 5);
    const std::pair<QString, QString> marks[] = {{QStringLiteral("Highlight"), PDFAnnotationSubtype::highlight},
                                                 {QStringLiteral("Underline"), PDFAnnotationSubtype::underline},
                                                 {QStringLiteral("Strikethrough"), PDFAnnotationSubtype::strikeOut}};
    for (const auto& [title, subtype] : marks) {
        select(0, 1, 0, 1);
        withMenu(elsewhere, [wanted = title](QMenu& menu) {
            EXPECT_FALSE(menu.accessibleName().isEmpty());
            EXPECT_EQ(titles(menu).join(u','), QStringLiteral("Highlight,Underline,Strikethrough,-,Copy"));
            choose(menu, wanted);
        });
        ASSERT_FALSE(annotations().empty());
        EXPECT_EQ(annotations().back()->type(), subtype);
    }
    select(0, 0, 0, 1);
    withMenu(elsewhere, [](QMenu& menu) { choose(menu, QStringLiteral("Copy")); });
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("First line of page one\nSecond line, a longer one"));
    EXPECT_TRUE(m_view.hasSelection());

    QStringList asked;
    m_view.onAskAI = [&asked](const QString& prompt, bool send) { asked << prompt + QString::number(send); };
    select(0, 2, 0, 2);
    withAssistant(elsewhere, [](QMenu& menu) {
        EXPECT_EQ(titles(menu).join(u','),
                  QStringLiteral("Explain This,Summarize Selection,Simplify / Plain English,Extract Key Points,"
                                 "Generate Study Questions,Translate…,-,Send to AI Assistant"));
        for (QAction* const action : menu.actions())
            action->trigger();
    });
    EXPECT_EQ(asked.join(u'\n').toStdString(), "Explain this: “Third”1\nSummarize this: “Third”1\n"
                                               "Rewrite this in simple, plain English: “Third”1\n"
                                               "Extract the key points from this as a short bullet list: “Third”1\n"
                                               "Write 3 short study questions based on this: “Third”1\n"
                                               "Translate this to <language>: “Third”0\nThird0");
}

TEST_F(AnnotatingPDFViewTest, noMarkupIsOfferedWithoutSelectedTextOrToolState) {
    const auto offersNoMarkup = [](QMenu& menu) { EXPECT_FALSE(titles(menu).contains(QStringLiteral("Highlight"))); };
    withMenu({50, 50}, offersNoMarkup);
    select(0, 0, 0, 1);
    m_view.setToolState(nullptr);
    withMenu({50, 50}, offersNoMarkup);

    PdfFixture scan;
    for (int i = 0; i < 70; ++i)
        scan.addPageWithContent("0 0 100 100 re f");
    m_view.setDocument(PDFDocument::fromData(scan.bytes()));
    m_view.setToolState(m_toolState);
    m_view.selectAll();
    withMenu({50, 50}, offersNoMarkup);
    EXPECT_FALSE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
}

TEST_F(AnnotatingPDFViewTest, markupIsAsHighAsTheFontOfTheLineAndKeepsOffItsNeighbours) {
    PdfFixture fixture;
    fixture.addPageWithContent("BT /F1 12 Tf 1 0 0 1 90 700 Tm (Plain words of a line) Tj\n"
                               "1 0 0 1 72 660 Tm /F1 24 Tf (-) Tj /F1 12 Tf ( A bullet) Tj 6 Ts /F1 9 Tf (12) Tj\n"
                               "0 Ts /F1 12 Tf ( and a note) Tj 1 0 0 1 72 600 Tm (Lines that stand) Tj\n"
                               "1 0 0 1 72 591 Tm (close to the last) Tj 1 0 0 1 72 582 Tm (one or the next) Tj\n"
                               "1 0 0 1 72 500 Tm (a =          b) Tj /F1 8 Tf "
                               "1 0 0 1 100 502 Tm (n) Tj ET",
                               fixture.defaultResources());
    show(fixture);
    m_view.selectAll();
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    ASSERT_EQ(page()->text()->lines.size(), 7U) << page()->string().toStdString();
    ASSERT_EQ(annotations().size(), 6U) << "the exponent isn't marked twice";
    std::vector<QRectF> boxes;
    for (const auto& marked : annotations())
        boxes.push_back(marked->quadrilateralPoints().at(0).boundingRect());
    EXPECT_NEAR(boxes[1].left(), 72, 2) << "with the bullet";
    EXPECT_NEAR(boxes[1].top(), boxes[0].top() - 40, 0.01);
    EXPECT_NEAR(boxes[1].bottom(), boxes[0].bottom() - 40, 0.01);
    for (std::size_t i = 2; i < 4; ++i) {
        EXPECT_NEAR(boxes[i].top(), boxes[i + 1].bottom(), 0.01) << "neither a gap nor a seam";
        EXPECT_GT(boxes[i].height(), 8);
    }
}

TEST_F(AnnotatingPDFViewTest, noMenuComesUpInTheMiddleOfADrag) {
    QWindow* const window = m_view.windowHandle();
    const auto at = [this](QPointF point) { return m_view.viewport()->mapTo(&m_view, onScreen(point).toPoint()); };
    m_toolState->setTool(AnnotationTool::rectangle);
    QTest::mousePress(window, Qt::LeftButton, {}, at({100, 500}));
    QTest::mouseMove(window, at({200, 560}));
    QTest::mouseClick(window, Qt::RightButton, {}, at({200, 560}));
    EXPECT_FALSE(QApplication::activePopupWidget());
    QTest::mouseRelease(window, Qt::LeftButton, {}, at({200, 560}));
    EXPECT_NEAR(annotations().at(0)->bounds().width(), 100, 2);
}

TEST_F(AnnotatingPDFViewTest, markupFollowsTextThatRunsUpATurnedPage) {
    // As scanners and spreadsheets write wide pages: turned by a quarter, with the text turned against it.
    PdfFixture fixture;
    fixture.addPageWithContent("BT /F1 20 Tf 0 1 -1 0 200 100 Tm (Up the sheet) Tj 0 -40 Td (Another line) Tj ET",
                               fixture.defaultResources());
    fixture.setPageKey(0, "/Rotate", "90");
    show(fixture);
    select(0, 0, 0, 1);
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::underline));
    const PDFQuad quad = annotations().at(0)->quadrilateralPoints().at(0);
    EXPECT_NEAR(quad.boundingRect().bottom(), line(0).bottom(), 1);
    EXPECT_NEAR(quad.lowerLeft.x(), quad.lowerRight.x(), 0.01) << "the line below the text runs up the page";
    EXPECT_GT(quad.lowerLeft.x(), quad.upperLeft.x());
}

TEST_F(AnnotatingPDFViewTest, aModeMarksEachSelectionWhenTheButtonIsReleased) {
    m_toolState->setActiveMarkupMode(MarkupAction::strikethrough);
    const QRectF words = line(1);
    drag({{words.left() + 1, words.center().y()}, words.center()});
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_EQ(annotations()[0]->type(), PDFAnnotationSubtype::strikeOut);
    EXPECT_FALSE(m_view.hasSelection());
    doubleClick({words.left() + 3, words.center().y()}); // a word
    EXPECT_EQ(annotations().size(), 2U);
    click({300, 200});
    EXPECT_EQ(annotations().size(), 2U) << "nothing was selected";
    m_toolState->setTool(AnnotationTool::rectangle);
    select(0, 0, 0, 0);
    click({300, 200});
    EXPECT_EQ(annotations().size(), 2U) << "another tool doesn't mark";
}

TEST_F(AnnotatingPDFViewTest, thePageMenuAddsNotesAndTextAndReadsThePage) {
    QStringList asked;
    m_view.onAskAI = [&asked](const QString& prompt, bool send) { asked << prompt + QString::number(send); };
    const QPoint spot = onScreen({300, 500}).toPoint();
    m_toolState->setTool(AnnotationTool::ink);
    withMenu(spot, [](QMenu& menu) {
        EXPECT_EQ(titles(menu).join(u','), QStringLiteral("Add Note Here,Add Text Box Here,-,Ask AI"));
        EXPECT_EQ(titles(*menu.actions().last()->menu()).join(u','),
                  QStringLiteral("Summarize This Page,Extract Text with AI (OCR)"));
        choose(menu, QStringLiteral("Add Note Here"));
    });
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_LT((annotations()[0]->bounds().center() - QPointF(300, 500)).manhattanLength(), 3);
    withMenu(spot, [](QMenu& menu) { choose(menu, QStringLiteral("Add Text Box Here")); });
    EXPECT_TRUE(annotations().empty()) << "the empty new note goes";
    auto* const editor = openEditor();
    ASSERT_TRUE(editor);
    QTest::keyClicks(editor, QStringLiteral("typed"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_EQ(annotations()[0]->contents(), QStringLiteral("typed"));

    const auto summarize = [](QMenu& menu) { menu.actions().first()->trigger(); };
    withAssistant(spot, summarize);
    PdfFixture scan;
    scan.addPageWithContent("0 0 100 100 re f");
    show(scan);
    withAssistant(spot, summarize);
    EXPECT_EQ(asked.join(u'|').toStdString(),
              "Summarize page 1: “First line of page one\nSecond line, a longer one\nThird\nFourth line”1|"
              "Page 1 has no extractable text (it may be a scanned image). Let me know that directly rather than "
              "guessing its content.1");
}

TEST_F(AnnotatingPDFViewTest, textIsRecognizedOnAPageAndAMissingOneIsSaid) {
    QStringList extracted;
    m_view.onTextExtracted = [&extracted](const QString& text) { extracted << text; };
    const auto extract = [&] {
        const auto before = extracted.size();
        withAssistant({50, 50}, [](QMenu& menu) {
            EXPECT_EQ(titles(menu).join(u','), QStringLiteral("Extract Text with AI (OCR)"));
            menu.actions().first()->trigger();
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return extracted.size() > before; }, 60'000));
    };
    extract();
    EXPECT_TRUE(extracted.value(0).contains(QStringLiteral("Second line, a longer one")));
    EXPECT_EQ(QApplication::clipboard()->text(), extracted.value(0));
    PdfFixture blank;
    blank.addPage({});
    show(blank);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    extract();
    EXPECT_EQ(extracted.back(), QStringLiteral("No text could be recognized on this page."));
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
}

} // namespace
