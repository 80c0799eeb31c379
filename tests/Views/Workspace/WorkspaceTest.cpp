#include "WorkspaceTest.h"

#include "PDFViewCoordinator.h"
#include "PassingNotice.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QProgressDialog>
#include <QPushButton>

TEST_F(WorkspaceTest, copyingALongDocumentTellsHowFarItIsAndCanBeStopped) {
    openWorkspace({.pageCount = 40});
    QGuiApplication::clipboard()->clear();
    int told = 0;
    QObject::connect(m_view, &PDFView::textReadingProgressed, m_workspace.get(), [&] {
        const auto* progress = find<QProgressDialog>(*m_workspace, QStringLiteral("readingProgress"));
        ASSERT_EQ(progress->value(), told++);
        progress->findChild<QPushButton*>()->click();
    });
    m_view->selectAll();
    m_view->copy();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_view->isReadingText(); }));
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(QGuiApplication::clipboard()->text().isEmpty());
}

TEST_F(WorkspaceTest, panesAreReachedByAKey) {
    openWorkspace({});
    m_workspace->setShowsAssistant(true);
    m_view->setFocus();
    const auto* const pageField = m_workspace->findChild<QWidget*>(QStringLiteral("pageField"));
    const auto press = [](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, modifiers);
        return QApplication::focusWidget();
    };
    EXPECT_TRUE(m_workspace->findChild<QWidget*>(QStringLiteral("assistantPanel"))->isAncestorOf(press({})));
    EXPECT_EQ(press({}), pageField);
    EXPECT_EQ(press({})->objectName(), QStringLiteral("thumbnails"));
    EXPECT_EQ(press({}), m_view);
    press(Qt::ShiftModifier);
    EXPECT_EQ(press(Qt::ShiftModifier), pageField);
}

TEST_F(WorkspaceTest, aRepairedFileIsToldByANotice) {
    openWorkspace({.isDamaged = true});
    ASSERT_TRUE(m_document->pdfDocument()->wasRepaired());
    EXPECT_EQ(m_workspace->notice().message(), m_document->openNotice());
    EXPECT_TRUE(m_workspace->notice().isVisible());
}

TEST_F(WorkspaceTest, theRememberedPageFollowsANewName) {
    openWorkspace({.pageCount = 5});
    m_view->goToPage(m_document->pdfDocument()->page(3));
    const QUrl newName = QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("renamed.pdf")));
    m_workspace->setFileURL(newName);
    EXPECT_EQ(m_workspace->coordinator().rememberedPageIndex(newName), 3);
}

TEST_F(WorkspaceTest, everyControlHasANameForThoseWhoCantSeeIt) {
    openWorkspace({});
    for (const QWidget* widget : m_workspace->findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible())
            continue;
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->objectName().toStdString();
    }
}
