#include "AnnotatingPDFView.h"

#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "PageText.h"
#include "PdfFixtures.h"
#include "PdfPrograms.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

class AnnotatingPDFViewTest : public testing::Test {
protected:
    AnnotatingPDFViewTest() {
        PdfFixture fixture;
        for (const QString& page : {u"one"_qs, u"two"_qs}) {
            fixture.addPage({u"First line of page %1"_qs.arg(page), u"Second line, a longer one"_qs, u"Third"_qs,
                             u"Fourth line"_qs});
        }
        m_document = PDFDocument::fromData(fixture.bytes());
        m_view.setDocument(m_document);
        m_view.setToolState(m_toolState);
        m_view.setDocUndoManager(m_undoManager);
        m_view.resize(700, 900);
        m_view.show();
        QTest::qWait(0);
    }

    [[nodiscard]] std::shared_ptr<PDFPage> page(int index) const { return m_document->page(index); }

    /// From the start of a line to the end of another; lines and pages are zero-based.
    void select(int fromPage, int fromLine, int toPage, int toLine) {
        const auto from = page(fromPage)->text()->lines.at(std::size_t(fromLine)).bounds;
        const auto to = page(toPage)->text()->lines.at(std::size_t(toLine)).bounds;
        m_view.setCurrentSelection(m_document->selection(*page(fromPage), {from.left() - 2, from.center().y()},
                                                         *page(toPage), {to.right() + 2, to.center().y()}));
    }

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
            titles << (action->isSeparator() ? u"-"_qs : action->text().remove(u'&').section(u'\t', 0, 0));
        return titles;
    }

    std::shared_ptr<PDFDocument> m_document;
    std::shared_ptr<ToolState> m_toolState = std::make_shared<ToolState>();
    std::shared_ptr<UndoManager> m_undoManager = std::make_shared<UndoManager>();
    AnnotatingPDFView m_view;
};

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
    const QPoint spot = m_view.convertFromPage(QPointF(line.right() - 1, line.top() + 1), *page(0)).toPoint();
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
    } commands[] = {{u"Highlight"_qs, PDFAnnotationSubtype::highlight},
                    {u"Underline"_qs, PDFAnnotationSubtype::underline},
                    {u"Strikethrough"_qs, PDFAnnotationSubtype::strikeOut}};
    for (const auto& [title, subtype] : commands) {
        select(0, 1, 0, 1);
        bool isShown = false;
        withMenu(elsewhere, [&, wanted = title](QMenu& menu) {
            isShown = true;
            EXPECT_FALSE(menu.accessibleName().isEmpty());
            EXPECT_EQ(titles(menu).join(u','), u"Highlight,Underline,Strikethrough,-,Copy"_qs);
            choose(menu, wanted);
        });
        EXPECT_TRUE(isShown);
        ASSERT_EQ(page(0)->annotations().size(), 1U) << title.toStdString();
        EXPECT_EQ(page(0)->annotations()[0]->type(), subtype);
        QCoreApplication::processEvents();
        m_undoManager->undo();
    }

    select(0, 0, 0, 1);
    withMenu(elsewhere, [](QMenu& menu) { choose(menu, u"Copy"_qs); });
    EXPECT_EQ(QApplication::clipboard()->text(), u"First line of page one\nSecond line, a longer one"_qs);
    EXPECT_TRUE(m_view.hasSelection());
}

TEST_F(AnnotatingPDFViewTest, noMarkupIsOfferedWithoutSelectedTextOrToolState) {
    const auto offersNoMarkup = [](QMenu& menu) { EXPECT_FALSE(titles(menu).contains(u"Highlight"_qs)); };
    withMenu({50, 50}, offersNoMarkup);
    select(0, 0, 0, 1);
    m_view.setToolState(nullptr);
    withMenu({50, 50}, offersNoMarkup);

    PdfFixture scan;
    scan.addPageWithContent("0 0 100 100 re f");
    m_view.setDocument(PDFDocument::fromData(scan.bytes()));
    m_view.setToolState(m_toolState);
    m_view.selectAll();
    withMenu({50, 50}, offersNoMarkup);
    EXPECT_FALSE(m_view.applyMarkup(PDFAnnotationSubtype::highlight));
}

} // namespace
