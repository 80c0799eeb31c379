#include "NoteAnnotation.h"
#include "PDFSelection.h"
#include "PdfPrograms.h"
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
    const auto add = [this](const std::shared_ptr<PDFAnnotation>& annotation, const QString& words) {
        annotation->setContents(words);
        annotation->setColor(Qt::red);
        annotation->setInteriorColor(Qt::yellow);
        page()->addAnnotation(annotation);
    };
    add(std::make_shared<PDFAnnotation>(QRectF(100, 400, 50, 50), PDFAnnotationSubtype::circle),
        QStringLiteral("Why?"));
    add(std::make_shared<NoteAnnotation>(QRectF(200, 400, 120, 80)), QStringLiteral("mine"));
    add(std::make_shared<PDFAnnotation>(QRectF(400, 400, 50, 50), PDFAnnotationSubtype::square),
        RedactionMarkerAnnotation::marker);
    EXPECT_TRUE(panelAfterClick({125, 425}).endsWith(QStringLiteral("\nWhy?")));
    EXPECT_EQ(panelAfterClick({250, 440}), QString()) << "it shows its words by itself, and can be moved";
    EXPECT_EQ(panelAfterClick({425, 425}), QString());
    click({125, 425});
    m_toolState->setTool(AnnotationTool::eraser);
    EXPECT_FALSE(openEditor());
    m_toolState->setTool(AnnotationTool::ink);
    EXPECT_EQ(panelAfterClick({125, 425}), QString());
}

TEST_F(AnnotatingPDFViewTest, marksEachSelectedLineAndUndoesAllInOneStep) {
    m_toolState->setColor(QColor(10, 200, 30));
    select(0, 0, 0, 2);
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::underline));
    QCoreApplication::processEvents();

    EXPECT_FALSE(m_view.hasSelection());
    const auto made = page(0)->annotations();
    ASSERT_EQ(made.size(), 3U);
    for (std::size_t line = 0; line < 3; ++line) {
        const QRectF text = page(0)->text()->lines[line].bounds;
        const QRectF box = made[line]->bounds();
        EXPECT_EQ(made[line]->type(), PDFAnnotationSubtype::underline);
        EXPECT_EQ(made[line]->color(), QColor(10, 200, 30));
        EXPECT_NEAR(box.left(), text.left(), 1) << line;
        EXPECT_NEAR(box.right(), text.right(), 1) << line;
        EXPECT_NEAR(box.top(), text.top(), 1) << line;
        EXPECT_NEAR(box.bottom(), text.bottom(), 1) << line;
    }
    EXPECT_TRUE(page(1)->annotations().empty());

    m_undoManager->undo();
    EXPECT_TRUE(page(0)->annotations().empty());
    EXPECT_FALSE(m_undoManager->canUndo());
    m_undoManager->redo();
    EXPECT_EQ(page(0)->annotations(), made);
    EXPECT_FALSE(m_undoManager->canRedo());
}

TEST_F(AnnotatingPDFViewTest, aSelectionOverPagesIsMarkedOnEachAndSaved) {
    select(0, 2, 1, 0);
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    EXPECT_EQ(page(0)->annotations().size(), 2U);
    EXPECT_EQ(page(1)->annotations().size(), 1U);
    const QByteArray saved = m_document->dataRepresentation();
    EXPECT_EQ(PdfPrograms::complaints(saved), "");
    EXPECT_EQ(PdfPrograms::unpacked(saved).count("/Subtype /Highlight"), 3);
}

TEST_F(AnnotatingPDFViewTest, withoutASelectionNothingIsMarkedAndWithoutAnUndoManagerEverythingElseWorks) {
    EXPECT_FALSE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    EXPECT_FALSE(m_undoManager->canUndo());
    m_view.setDocUndoManager(nullptr);
    select(0, 0, 0, 0);
    EXPECT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::strikeOut));
    EXPECT_EQ(page(0)->annotations().size(), 1U);
    EXPECT_FALSE(m_undoManager->canUndo());
}

TEST_F(AnnotatingPDFViewTest, markupAndItsUndoShowOnTheScreen) {
    m_toolState->setColor(Qt::red);
    const QRectF line = page(0)->text()->lines[1].bounds;
    const QPoint spot = m_view.convertFromPage(QPointF(line.right() - 1, line.top() + 3), *page(0)).toPoint();
    const auto isMarked = [&] {
        const QColor color = m_view.viewport()->grab().toImage().pixelColor(spot);
        return color.red() > 200 && color.green() < 120;
    };
    EXPECT_FALSE(isMarked());
    select(0, 1, 0, 1);
    m_view.applyMarkup(PDFAnnotationSubtype::highlight);
    EXPECT_TRUE(QTest::qWaitFor(isMarked, 20'000));
    m_undoManager->undo();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isMarked(); }, 20'000));
}

TEST_F(AnnotatingPDFViewTest, theMenuOfSelectedTextMarksAndCopiesFromAnywhere) {
    const QPoint elsewhere(5, m_view.viewport()->height() - 5);
    const struct {
        QString title;
        QString subtype;
    } commands[] = {{QStringLiteral("Highlight"), PDFAnnotationSubtype::highlight},
                    {QStringLiteral("Underline"), PDFAnnotationSubtype::underline},
                    {QStringLiteral("Strikethrough"), PDFAnnotationSubtype::strikeOut}};
    for (const auto& [title, subtype] : commands) {
        select(0, 1, 0, 1);
        bool isShown = false;
        withMenu(elsewhere, [&, wanted = title](QMenu& menu) {
            isShown = true;
            EXPECT_FALSE(menu.accessibleName().isEmpty());
            EXPECT_EQ(titles(menu).join(u','), QStringLiteral("Highlight,Underline,Strikethrough,-,Copy"));
            choose(menu, wanted);
        });
        EXPECT_TRUE(isShown);
        ASSERT_EQ(page(0)->annotations().size(), 1U) << title.toStdString();
        EXPECT_EQ(page(0)->annotations()[0]->type(), subtype);
        QCoreApplication::processEvents();
        m_undoManager->undo();
    }

    select(0, 0, 0, 1);
    withMenu(elsewhere, [](QMenu& menu) { choose(menu, QStringLiteral("Copy")); });
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("First line of page one\nSecond line, a longer one"));
    EXPECT_TRUE(m_view.hasSelection());
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

TEST_F(AnnotatingPDFViewTest, noMenuComesUpInTheMiddleOfADrag) {
    QWindow* const window = m_view.windowHandle();
    const auto at = [this](QPointF point) { return m_view.viewport()->mapTo(&m_view, onScreen(point).toPoint()); };
    m_toolState->setTool(AnnotationTool::rectangle);
    QTest::mousePress(window, Qt::LeftButton, {}, at({100, 500}));
    QTest::mouseMove(window, at({150, 540}));
    QTest::mouseClick(window, Qt::RightButton, {}, at({150, 540}));
    EXPECT_FALSE(QApplication::activePopupWidget());
    QTest::mouseMove(window, at({200, 560}));
    QTest::mouseRelease(window, Qt::LeftButton, {}, at({200, 560}));
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_NEAR(annotations()[0]->bounds().width(), 100, 2);

    QTest::mouseClick(window, Qt::RightButton, {}, at({150, 540}));
    QWidget* const menu = QApplication::activePopupWidget();
    ASSERT_TRUE(menu);
    menu->close();
}

TEST_F(AnnotatingPDFViewTest, markupFollowsTextThatRunsUpATurnedPage) {
    // As scanners and spreadsheets write wide pages: turned by a quarter, with the text turned against it.
    PdfFixture fixture;
    fixture.addPageWithContent("BT /F1 20 Tf 0 1 -1 0 200 100 Tm (Up the sheet) Tj 0 -40 Td (Another line) Tj ET",
                               fixture.defaultResources());
    fixture.setPageKey(0, "/Rotate", "90");
    show(PDFDocument::fromData(fixture.bytes()));
    select(0, 0, 0, 1);
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::underline));
    ASSERT_EQ(annotations().size(), 2U);
    const QRectF glyphs = page()->text()->lines[0].bounds;
    const auto& first = *annotations()[0];
    EXPECT_NEAR(first.bounds().left(), glyphs.left(), 1);
    EXPECT_NEAR(first.bounds().bottom(), glyphs.bottom(), 1);
    ASSERT_EQ(first.quadrilateralPoints().size(), 1U);
    const PDFQuad quad = first.quadrilateralPoints()[0];
    EXPECT_NEAR(quad.lowerLeft.x(), quad.lowerRight.x(), 0.01) << "the line below the text runs up the page";
    EXPECT_LT(quad.lowerLeft.y(), quad.lowerRight.y());
    EXPECT_GT(quad.lowerLeft.x(), quad.upperLeft.x());

    const auto reopened = PDFDocument::fromData(m_document->dataRepresentation());
    EXPECT_EQ(reopened->page(0)->annotations().at(0)->quadrilateralPoints()[0].boundingRect().toRect(),
              quad.boundingRect().toRect());
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
    show(PDFDocument::fromData(fixture.bytes()));
    m_view.selectAll();
    ASSERT_TRUE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
    ASSERT_EQ(page()->text()->lines.size(), 7U) << page()->string().toStdString();
    ASSERT_EQ(annotations().size(), 6U) << "the exponent isn't marked twice";
    std::vector<QRectF> boxes;
    for (const auto& marked : annotations()) {
        ASSERT_EQ(marked->quadrilateralPoints().size(), 1U);
        boxes.push_back(marked->quadrilateralPoints()[0].boundingRect());
        EXPECT_EQ(marked->bounds(), boxes.back());
    }
    EXPECT_NEAR(boxes[1].left(), 72, 2) << "with the bullet";
    EXPECT_NEAR(boxes[1].top(), boxes[0].top() - 40, 0.01);
    EXPECT_NEAR(boxes[1].bottom(), boxes[0].bottom() - 40, 0.01);
    for (std::size_t line = 2; line < 4; ++line) {
        EXPECT_NEAR(boxes[line].top(), boxes[line + 1].bottom(), 0.01) << "neither a gap nor a seam";
        EXPECT_GT(boxes[line].height(), 8);
    }
}

TEST_F(AnnotatingPDFViewTest, aModeMarksEachSelectionWhenTheButtonIsReleased) {
    m_toolState->setActiveMarkupMode(MarkupAction::strikethrough);
    const QRectF line = page()->text()->lines[1].bounds;
    drag({{line.left() + 1, line.center().y()}, {line.center().x(), line.center().y()}});
    ASSERT_EQ(annotations().size(), 1U);
    EXPECT_EQ(annotations()[0]->type(), PDFAnnotationSubtype::strikeOut);
    EXPECT_FALSE(m_view.hasSelection());
    doubleClick({line.left() + 3, line.center().y()}); // a word
    EXPECT_EQ(annotations().size(), 2U);
    click({300, 200});
    EXPECT_EQ(annotations().size(), 2U) << "nothing was selected";
    EXPECT_EQ(m_toolState->activeMarkupMode(), MarkupAction::strikethrough);

    m_toolState->setTool(AnnotationTool::rectangle);
    select(0, 0, 0, 0);
    click({300, 200});
    EXPECT_EQ(annotations().size(), 2U) << "another tool doesn't mark";
}

TEST_F(AnnotatingPDFViewTest, theAssistantIsAskedAboutTheSelection) {
    std::vector<std::pair<QString, bool>> asked;
    m_view.onAskAI = [&asked](const QString& prompt, bool send) { asked.emplace_back(prompt, send); };
    const struct {
        QString title;
        QString prompt;
        bool send;
    } entries[] = {{QStringLiteral("Explain This"), QStringLiteral("Explain this: “Third”"), true},
                   {QStringLiteral("Summarize Selection"), QStringLiteral("Summarize this: “Third”"), true},
                   {QStringLiteral("Simplify / Plain English"),
                    QStringLiteral("Rewrite this in simple, plain English: “Third”"), true},
                   {QStringLiteral("Extract Key Points"),
                    QStringLiteral("Extract the key points from this as a short bullet list: “Third”"), true},
                   {QStringLiteral("Generate Study Questions"),
                    QStringLiteral("Write 3 short study questions based on this: “Third”"), true},
                   {QStringLiteral("Translate…"), QStringLiteral("Translate this to <language>: “Third”"), false},
                   {QStringLiteral("Send to AI Assistant"), QStringLiteral("Third"), false}};
    select(0, 2, 0, 2);
    for (const auto& [title, prompt, send] : entries) {
        withMenu({50, 50}, [wanted = title](QMenu& menu) {
            EXPECT_EQ(titles(menu).join(u','), QStringLiteral("Highlight,Underline,Strikethrough,-,Copy,-,Ask AI"));
            QMenu* const submenu = menu.actions().last()->menu();
            ASSERT_TRUE(submenu);
            submenu->actions().at(int(titles(*submenu).indexOf(wanted)))->trigger();
        });
        ASSERT_FALSE(asked.empty());
        EXPECT_EQ(asked.back(), std::pair(prompt, send));
    }
}

TEST_F(AnnotatingPDFViewTest, thePageMenuAddsNotesAndTextAndReadsThePage) {
    std::vector<std::pair<QString, bool>> asked;
    m_view.onAskAI = [&asked](const QString& prompt, bool send) { asked.emplace_back(prompt, send); };
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

    const auto summarize = [](QMenu& menu) { menu.actions().last()->menu()->actions().first()->trigger(); };
    withMenu(spot, summarize);
    EXPECT_EQ(asked.back().first,
              QStringLiteral("Summarize page 1: “First line of page one\nSecond line, a longer one\nThird\n"
                             "Fourth line”"));
    PdfFixture scan;
    scan.addPage({QStringLiteral("words")});
    scan.addPageWithContent("0 0 100 100 re f");
    show(PDFDocument::fromData(scan.bytes()));
    m_view.goToPage(page(1));
    withMenu(m_view.convertFromPage(QPointF(300, 300), *page(1)).toPoint(), summarize);
    EXPECT_EQ(
        asked.back(),
        std::pair(QStringLiteral(
                      "Page 2 has no extractable text (it may be a scanned image). Let me know that directly rather "
                      "than guessing its content."),
                  true));
}

TEST_F(AnnotatingPDFViewTest, textIsRecognizedOnAPageAndAMissingOneIsSaid) {
    std::vector<QString> extracted;
    m_view.onTextExtracted = [&extracted](const QString& text) { extracted.push_back(text); };
    const auto extract = [&] {
        const std::size_t before = extracted.size();
        withMenu({50, 50}, [](QMenu& menu) {
            EXPECT_EQ(titles(*menu.actions().last()->menu()).join(u','), QStringLiteral("Extract Text with AI (OCR)"));
            menu.actions().last()->menu()->actions().first()->trigger();
        });
        EXPECT_TRUE(QTest::qWaitFor([&] { return extracted.size() > before; }, 60'000));
    };
    extract();
    ASSERT_EQ(extracted.size(), 1U);
    EXPECT_TRUE(extracted[0].contains(QStringLiteral("Second line, a longer one"))) << extracted[0].toStdString();
    EXPECT_EQ(QApplication::clipboard()->text(), extracted[0]);
    PdfFixture blank;
    blank.addPage({});
    show(PDFDocument::fromData(blank.bytes()));
    QApplication::clipboard()->setText(QStringLiteral("before"));
    extract();
    EXPECT_EQ(extracted.back(), QStringLiteral("No text could be recognized on this page."));
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
}

} // namespace
