#include "PDFAnnotation.h"
#include "PDFDocument.h"
#include "PDFPage.h"
#include "PDFSelection.h"
#include "RemarkThreads.h"
#include "ShownView.h"

#include <QAccessible>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

std::shared_ptr<PDFDocument> remarkedDocument() {
    PdfFixture fixture;
    fixture.addPage({QStringLiteral("Some words to be marked on the page")});
    const QByteArray date = " /M (D:20240229123000Z) ";
    fixture.addAnnotation(0, "<< /Subtype /Highlight /T (Ada King) /Contents (First <b>words</b>) /C [1 1 0] "
                             "/Rect [72 700 172 760] /QuadPoints [72 760 172 760 72 740 172 740] >>");
    fixture.addAnnotation(0, "<< /Subtype /Square /T (Bob) /C [1 0 0] /Rect [300 600 400 700] /Contents (edge) >>");
    fixture.addAnnotation(0, "<< /Subtype /Stamp /T (Silent) /Rect [450 600 500 650]" + date + ">>");
    const QByteArray question =
        fixture.addAnnotation(0, "<< /Subtype /Text /T (Cy) /Rect [72 600 92 620] /Contents (Question) >>");
    fixture.addAnnotation(0, "<< /Subtype /Popup /Rect [300 300 500 500] /Contents (window) >>");
    fixture.addAnnotation(0, "<< /Subtype /FreeText /T (\n\x01"
                             "Eve\\r) /Rect [72 500 272 540] /Contents (" +
                                 QByteArray("long word ").repeated(3000) + ") >>");
    fixture.addUriLink(0, QRectF(72, 300, 60, 20), "https://example.org/");
    fixture.addAnnotation(0, "<< /Subtype /Underline /T (Dan) /Rect [72 300 172 320] /Contents (over a link) >>");
    const QByteArray later = "<< /Subtype /Text /T (Dan) /Rect [72 600 92 620] /Contents (later) /M (D:2025) /IRT ";
    const QByteArray answer = fixture.addAnnotation(0, later + question + " >>");
    fixture.addAnnotation(0, "<< /Subtype /Text /T (Eve) /Rect [72 600 92 620] /Contents (sooner)" + date + "/IRT " +
                                 answer + " >>");
    return documentOf(fixture);
}

class RemarkTest : public testing::Test {
protected:
    [[nodiscard]] QPointF at(double x, double y) const { return m_view.convertFromPage(QPointF(x, y), *page()); }
    [[nodiscard]] std::shared_ptr<PDFPage> page() const { return m_view.page(0); }
    [[nodiscard]] QTextEdit* panel() const {
        auto* const found = m_view.findChild<QTextEdit*>(QStringLiteral("remarkPanel"));
        return found && found->isVisible() ? found : nullptr;
    }
    QString tip(double x, double y) {
        const QString none = QStringLiteral("none"); // a tip that is hidden stays for a moment
        QToolTip::showText(QPoint(0, 0), none, &m_view);
        return m_view.toolTip(at(x, y)).remove(none);
    }
    void click(double x, double y) {
        m_view.click(at(x, y));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    ShownView m_view{remarkedDocument()};
};

} // namespace

TEST_F(RemarkTest, ATipSaysWhoWhenAndWhat) {
    EXPECT_EQ(tip(100, 750), QStringLiteral("<qt>Ada King<br>First &lt;b&gt;words&lt;/b&gt;</qt>"));
    EXPECT_EQ(tip(100, 710), QString()) << "between the lines that it marks";
    EXPECT_EQ(tip(300, 650), QStringLiteral("Bob\nedge"));
    EXPECT_EQ(tip(350, 650), QString()) << "the inside of an empty shape";
    EXPECT_TRUE(tip(475, 625).startsWith(QStringLiteral("Silent, "))) << tip(475, 625).toStdString();
    EXPECT_TRUE(tip(475, 625).contains(QStringLiteral("24")));
    EXPECT_EQ(tip(400, 400), QString());
    const QString cut = tip(100, 520);
    EXPECT_TRUE(cut.startsWith(QStringLiteral("Eve\nlong word"))) << cut.toStdString();
    EXPECT_TRUE(cut.endsWith(u'…'));
    EXPECT_LE(cut.count(u'\n'), 12);
    EXPECT_EQ(tip(100, 310), QStringLiteral("https://example.org/"));
    EXPECT_EQ(tip(150, 310), QStringLiteral("Dan\nover a link"));
    m_view.setReadsRemarks(false);
    EXPECT_EQ(tip(300, 650), QString());
}

TEST_F(RemarkTest, AClickOpensAPanelToReadAndCopyFrom) {
    click(100, 750);
    ASSERT_TRUE(panel());
    EXPECT_EQ(panel()->toPlainText(), QStringLiteral("Ada King\nFirst <b>words</b>"));
    EXPECT_TRUE(panel()->hasFocus());
    EXPECT_FALSE(panel()->geometry().intersects(QRectF(at(72, 760), at(172, 740)).toRect()));
    EXPECT_TRUE(m_view.viewport()->rect().contains(panel()->geometry()));
    EXPECT_LT(panel()->height(), 80) << "no higher than its two lines";
    QTest::keySequence(panel(), QKeySequence::SelectAll);
    EXPECT_TRUE(panel()->textCursor().hasSelection());
    QTest::keyClicks(panel(), QStringLiteral("x"));
    EXPECT_EQ(page()->annotations().at(0)->isModified(), false);
    page()->annotations().at(0)->setContents(QStringLiteral("Other words"));
    m_view.waitUntil([&] { return panel()->toPlainText().endsWith(QStringLiteral("Other words")); }, "the change");
    QTest::keyClick(panel(), Qt::Key_Escape);
    EXPECT_FALSE(panel());
    EXPECT_TRUE(m_view.hasFocus());

    click(100, 750);
    ASSERT_TRUE(panel());
    EXPECT_TRUE(panel()->toPlainText().endsWith(QStringLiteral("Other words")));
    click(400, 400);
    EXPECT_FALSE(panel()) << "a click elsewhere closes it";
    for (const QPointF point : {QPointF(475, 625), QPointF(350, 650)}) { // without words; beside the edge
        click(point.x(), point.y());
        EXPECT_FALSE(panel());
    }
    QSignalSpy followed(&m_view, &PDFView::linkActivated);
    click(100, 310);
    EXPECT_FALSE(panel());
    EXPECT_EQ(followed.count(), 1) << "a link comes first";
    click(150, 310);
    ASSERT_TRUE(panel());
    EXPECT_GT(panel()->y(), at(72, 300).y()) << "what goes on behind marked words stays readable";

    m_view.drag(m_view.before(0, 0), m_view.before(0, 4));
    EXPECT_FALSE(panel());
    EXPECT_EQ(m_view.selected(), QStringLiteral("Some")) << "marked text can still be selected";
    click(80, 610);
    ASSERT_TRUE(panel());
    page()->removeAnnotation(page()->annotations().at(3));
    m_view.waitUntil([&] { return !panel(); }, "the panel to go with its annotation");
}

TEST_F(RemarkTest, AnswersStandBelow) {
    const RemarkThreads threads(*page());
    const auto& all = page()->annotations();
    EXPECT_EQ(threads.subject(all.at(9)), all.at(3));
    const std::vector<Remark> thread = threads.thread(all.at(3));
    ASSERT_EQ(thread.size(), 3U);
    EXPECT_EQ(thread[1].words, QStringLiteral("sooner"));
    EXPECT_EQ(thread[2].words, QStringLiteral("later"));
}

TEST_F(RemarkTest, TheKeyboardReachesAndOpensThem) {
    m_view.setFocus();
    QStringList seen;
    QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(&m_view);
    for (int i = 0; i < 4; ++i) {
        m_view.key(Qt::Key_Tab);
        seen.append(accessible->text(QAccessible::Description).left(16));
    }
    EXPECT_EQ(seen.mid(0, 2), QStringList({QStringLiteral("Comment: Ada Kin"), QStringLiteral("Comment: Bob: ed")}));
    m_view.key(Qt::Key_Backtab);
    m_view.key(Qt::Key_Backtab);
    m_view.key(Qt::Key_Return);
    ASSERT_TRUE(panel());
    EXPECT_TRUE(panel()->toPlainText().startsWith(QStringLiteral("Bob")));
    QAccessibleInterface* const words = QAccessible::queryAccessibleInterface(panel());
    EXPECT_EQ(words->text(QAccessible::Name), QStringLiteral("Comment"));
    EXPECT_TRUE(words->textInterface()->text(0, 8).contains(QStringLiteral("edge")));
    QTest::keyClick(panel(), Qt::Key_Escape);
    EXPECT_TRUE(accessible->text(QAccessible::Description).startsWith(QStringLiteral("Comment: Bob")));
    m_view.key(Qt::Key_Escape);
    EXPECT_TRUE(accessible->text(QAccessible::Description).startsWith(QStringLiteral("Page 1")));
}
