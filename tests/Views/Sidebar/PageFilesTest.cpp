#include "PdfPrograms.h"
#include "SidebarTest.h"
#include "SlowWork.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QThread>

#include <atomic>

class PageFilesTest : public SidebarTest {
protected:
    void write(const TestPdf& pdf, const QString& name) const { static_cast<void>(pdf.write(m_folder.path(), name)); }
};

TEST_F(PageFilesTest, filesAreMergedIntoTheDocumentOrTellWhyNot) {
    openPages(5);
    write({.pageCount = 2}, QStringLiteral("two.pdf"));
    write({.pageCount = 2, .password = "secret"}, QStringLiteral("locked.pdf"));
    QFile broken(path(QStringLiteral("broken.pdf")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("no PDF");
    broken.close();

    choose(QStringLiteral("mergePanel"), {});
    m_sidebar->mergeDocument();
    choose(QStringLiteral("mergePanel"), {path(QStringLiteral("two.pdf"))});
    m_sidebar->mergeDocument();
    EXPECT_TRUE(QTest::qWaitFor([this] { return order() == QStringLiteral("1234512"); })) << order().toStdString();
    undo();
    click(3, Qt::ControlModifier);
    click(1, Qt::ControlModifier);
    // A wrong password asks again; the right one opens.
    const auto type = [](const QString& password, auto next) {
        answer<QDialog>(QStringLiteral("passwordPrompt"), [password, next](QDialog& prompt) {
            auto* field = find<QLineEdit>(prompt, QStringLiteral("password"));
            EXPECT_EQ(field->echoMode(), QLineEdit::Password);
            field->setText(password);
            next();
            find<QPushButton>(prompt, QStringLiteral("unlock"))->click();
        });
    };
    type(QStringLiteral("wrong"), [type] { type(QStringLiteral("secret"), [] {}); });
    choose(QStringLiteral("mergePanel"), {path(QStringLiteral("locked.pdf"))});
    m_sidebar->mergeDocument();
    EXPECT_TRUE(QTest::qWaitFor([this] { return order() == QStringLiteral("1212345"); })) << order().toStdString();
    undo();

    choose(QStringLiteral("mergePanel"), {broken.fileName()});
    m_sidebar->mergeDocument();
    EXPECT_EQ(alert(), "Couldn't Open PDF: broken.pdf couldn't be read as a PDF.");

    const QString merged = path(QStringLiteral("Merged.pdf"));
    choose(QStringLiteral("mergeFilesPanel"), {path(QStringLiteral("two.pdf")), path(QStringLiteral("paper.pdf"))});
    answer<QDialog>(QStringLiteral("savePanel"), [](QDialog& panel) { panel.accept(); });
    m_sidebar->mergeMultipleFiles();
    EXPECT_EQ(alert(), "Merge Complete: Saved Merged.pdf with 7 pages from 2 files.");
    EXPECT_EQ(order(merged), QStringLiteral("1212345"));
    EXPECT_EQ(
        PdfPrograms::complaints(QFile(merged).exists() ? PDFDocument::fromFile(merged)->dataRepresentation() : ""), "");
    EXPECT_FALSE(m_document->isDocumentEdited());
}

TEST_F(PageFilesTest, partsOfTheDocumentBecomeFilesOfTheirOwn) {
    openPages(5);
    m_sidebar->splitDocument();
    EXPECT_EQ(alert(), "Can't Split There: Select a page (other than the first) to split before.");
    click(2); // goes there
    choose(QStringLiteral("folderPanel"), {});
    m_sidebar->splitDocument(); // says nothing
    choose(QStringLiteral("folderPanel"), {m_folder.path()});
    m_sidebar->splitDocument();
    EXPECT_EQ(alert(), "Split Complete: Saved paper (1).pdf and paper (2).pdf. The open document is unchanged.");
    EXPECT_EQ(order(path(QStringLiteral("paper (1).pdf"))), QStringLiteral("12"));
    EXPECT_EQ(order(path(QStringLiteral("paper (2).pdf"))), QStringLiteral("345"));
    choose(QStringLiteral("folderPanel"), {QStringLiteral("/proc")});
    m_sidebar->splitDocument();
    EXPECT_EQ(alert(), "Couldn't Save: The split documents couldn't be written to that folder.");

    // The menu of a page outside of the selection is about that page alone.
    click(4, Qt::ControlModifier);
    click(0, Qt::ControlModifier);
    const auto menuOf = [this](int row) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, middle(row), m_list->viewport()->mapToGlobal(middle(row)));
        QApplication::sendEvent(m_list->viewport(), &event);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QStringList texts;
        for (const QAction* action : menu->actions())
            texts.append(action->text());
        EXPECT_EQ(texts.join(u','), row == 1 ? QStringLiteral("Extract Page…,Delete Page")
                                             : QStringLiteral("Extract 2 Pages…,Delete 2 Pages"));
        return menu;
    };
    menuOf(1)->close();
    const QString extracted = path(QStringLiteral("Extracted Pages.pdf"));
    answer<QDialog>(QStringLiteral("savePanel"), [](QDialog& panel) { panel.accept(); });
    QTest::mouseClick(menuOf(4), Qt::LeftButton, {}, QPoint(20, 14));
    EXPECT_TRUE(QTest::qWaitFor([&] { return order(extracted) == QStringLiteral("15"); }))
        << order(extracted).toStdString();
    EXPECT_FALSE(m_document->isDocumentEdited());
    m_sidebar->deletePages({0, 1, 2, 3});
    m_sidebar->splitDocument();
    EXPECT_EQ(alert(), "Nothing to Split: This document only has one page.");
}

TEST_F(PageFilesTest, longWorkShowsItsProgressAndLeavesNothingWhenItIsCancelled) {
    openPages(1);
    std::atomic<bool> mayWrite = true;
    std::atomic<bool> hasEnded = false;
    bool isDone = false;
    SlowWork::run(
        m_sidebar, QStringLiteral("Working…"),
        [&](SlowWork::Course& course) {
            course.tell(1, 4);
            while (!course.isCancelled())
                QThread::msleep(5);
            mayWrite = course.becomeFinal();
            hasEnded = true;
            return 0;
        },
        [&isDone](int) { isDone = true; });
    QPointer<QProgressDialog> dialog;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        dialog = m_workspace->findChild<QProgressDialog*>(QStringLiteral("slowWork"));
        return dialog && dialog->isVisible();
    }));
    EXPECT_EQ(dialog->value() * 4, dialog->maximum());
    click(0); // the window lives
    QTest::mouseClick(dialog->findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasEnded.load(); }));
    QCoreApplication::processEvents();
    EXPECT_FALSE(mayWrite);
    EXPECT_FALSE(isDone);
    EXPECT_FALSE(dialog && dialog->isVisible());
}
