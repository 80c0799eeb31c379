#include "BookmarkList.h"
#include "BookmarksEditorView.h"
#include "MetadataEditorView.h"
#include "MetadataOperations.h"
#include "PDFOutline.h"
#include "PDFTools.h"
#include "PDFViewCoordinator.h"
#include "SidebarTest.h"
#include "WatermarkAnnotation.h"
#include "WatermarkSheetView.h"

#include <QAction>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSlider>

#include <algorithm>

namespace {

class SidebarSheetsTest : public SidebarTest {
protected:
    template <typename Sheet>
    Sheet* openSheet(const char* command) {
        m_sidebar->findChild<QAction*>(QLatin1String(command))->trigger();
        auto* sheet = m_workspace->findChild<Sheet*>();
        EXPECT_TRUE(sheet && QTest::qWaitForWindowExposed(sheet));
        return sheet;
    }
    static void click(const QWidget& sheet, const char* name) {
        QTest::mouseClick(find<QAbstractButton>(sheet, QLatin1String(name)), Qt::LeftButton);
        QCoreApplication::processEvents(); // an undo step ends
    }
    /// Such as "Intro, Page 2".
    QString bookmarks() const {
        QStringList labels;
        if (const auto root = m_document->pdfDocument()->outlineRoot())
            for (int i = 0; i < root->numberOfChildren(); ++i)
                labels.append(root->child(i)->label());
        return labels.join(QStringLiteral(", "));
    }
    /// The field of the title that is open.
    static QLineEdit* openTitle() {
        auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        EXPECT_TRUE(field && field->accessibleName() == QStringLiteral("Title"));
        return field;
    }
    /// Into that field, and what a key then makes of it.
    static void type(const QString& text, Qt::Key end) {
        QLineEdit* field = openTitle();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, end);
        QCoreApplication::processEvents();
    }
};

} // namespace

TEST_F(SidebarSheetsTest, metadataIsSavedInOneStepOrNotAtAll) {
    openPages(2);
    for (const bool saves : {false, true}) {
        const QPointer sheet = openSheet<MetadataEditorView>("editMetadata");
        EXPECT_EQ(sheet->windowTitle(), QStringLiteral("Document Info"));
        EXPECT_EQ(find<QLineEdit>(*sheet, QStringLiteral("metadataKeywords"))->placeholderText(),
                  QStringLiteral("Comma-separated"));
        find<QLineEdit>(*sheet, QStringLiteral("metadataTitle"))->setText(QStringLiteral("Título"));
        auto* keywords = find<QLineEdit>(*sheet, QStringLiteral("metadataKeywords"));
        keywords->setText(QStringLiteral("one,two"));
        if (saves)
            QTest::keyClick(keywords, Qt::Key_Return);
        else
            click(*sheet, "cancelMetadata");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet; }));
        const DocumentMetadata said = MetadataOperations::read(*m_document->pdfDocument());
        EXPECT_EQ(said.title, saves ? QStringLiteral("Título") : QString());
        EXPECT_EQ(said.keywords, saves ? QStringLiteral("one, two") : QString());
        EXPECT_EQ(m_document->isDocumentEdited(), saves);
    }
    undo();
    EXPECT_FALSE(m_document->isDocumentEdited());
}

TEST_F(SidebarSheetsTest, bookmarksAreAddedRenamedMovedDeletedAndUndone) {
    openPages(4);
    m_view->goToPage(m_document->pdfDocument()->page(2));
    QPointer sheet = openSheet<BookmarksEditorView>("editBookmarks");
    EXPECT_TRUE(find<QLabel>(*sheet, QStringLiteral("noBookmarks"))->isVisible());
    EXPECT_FALSE(find<QPushButton>(*sheet, QStringLiteral("deleteBookmarks"))->isEnabled());
    click(*sheet, "addBookmark");
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 3"));
    type(QStringLiteral("   "), Qt::Key_Return);
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 3")) << "a title isn't blank";
    click(*sheet, "addBookmark");
    QTest::keyClicks(openTitle(), QStringLiteral("Übersicht"));
    m_document->commitEditing(); // as a save does
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 3, Übersicht"));
    m_view->goToPage(m_document->pdfDocument()->page(0));
    click(*sheet, "addBookmark");
    type(QStringLiteral("never"), Qt::Key_Escape);
    ASSERT_TRUE(sheet);
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 1, Page 3, Übersicht"));

    auto* list = find<BookmarkList>(*sheet, QStringLiteral("bookmarkList"));
    const auto cell = [&](int row, int column) { return list->visualRect(list->model()->index(row, column)).center(); };
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, cell(2, 1));
    EXPECT_EQ(m_workspace->coordinator().currentPageIndex(), 2);
    const AssistantContext context{m_document->pdfDocument(), &m_workspace->coordinator(), {}};
    const auto tools = PDFTools::make(context);
    const auto goToSection = std::find_if(tools.begin(), tools.end(), [](const AssistantTool& tool) {
        return tool.name == QLatin1String("go_to_section");
    });
    EXPECT_EQ(goToSection->execute({{QStringLiteral("title"), QStringLiteral("übersicht")}}),
              QStringLiteral("Navigated to section 'Übersicht'."));
    for (int round = 0; round < 2; ++round) { // the second time it is at the top of its page already
        QTest::keyClick(list, Qt::Key_Up, Qt::AltModifier);
        QCoreApplication::processEvents();
        EXPECT_EQ(bookmarks(), QStringLiteral("Page 1, Übersicht, Page 3"));
    }
    EXPECT_EQ(list->selectedRows(), std::vector{1});
    QTest::keyClick(list, Qt::Key_Delete);
    QCoreApplication::processEvents();
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 1, Page 3"));

    const auto key = [&](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(list, Qt::Key_Z, modifiers);
        QCoreApplication::processEvents();
    };
    key(Qt::ControlModifier);
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 1, Übersicht, Page 3"));
    EXPECT_EQ(list->model()->rowCount(), 3);
    key(Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(bookmarks(), QStringLiteral("Page 1, Page 3"));
    m_view->goToPage(m_document->pdfDocument()->page(3));
    list->editRow(0);
    type(QStringLiteral("Cover"), Qt::Key_Return);
    EXPECT_EQ(bookmarks(), QStringLiteral("Cover, Page 3"));
    EXPECT_EQ(m_workspace->coordinator().currentPageIndex(), 3) << "the key went to the field alone";
    list->editRow(1);
    openTitle()->setText(QStringLiteral("Last words"));
    click(*sheet, "bookmarksDone");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet; }));
    EXPECT_EQ(bookmarks(), QStringLiteral("Cover, Last words"));

    sheet = openSheet<BookmarksEditorView>("editBookmarks");
    list = find<BookmarkList>(*sheet, QStringLiteral("bookmarkList"));
    key(Qt::ControlModifier);
    EXPECT_EQ(bookmarks(), QStringLiteral("Cover, Last words")) << "what was done before isn't undone here";
    for (int step = 0; step < 7; ++step)
        undo();
    EXPECT_EQ(bookmarks(), QString());
    EXPECT_FALSE(m_document->isDocumentEdited());
}

TEST_F(SidebarSheetsTest, aWatermarkIsAppliedUnlessItsTextIsBlank) {
    openPages(3);
    const QPointer sheet = openSheet<WatermarkSheetView>("addWatermark");
    auto* text = find<QLineEdit>(*sheet, QStringLiteral("watermarkText"));
    EXPECT_EQ(text->text(), QStringLiteral("CONFIDENTIAL"));
    text->setText(QStringLiteral(" \t "));
    EXPECT_FALSE(find<QPushButton>(*sheet, QStringLiteral("applyWatermark"))->isEnabled());
    QTest::keyClick(text, Qt::Key_Return);
    ASSERT_TRUE(sheet);
    text->setText(QStringLiteral(" DRAFT "));
    auto* opacity = find<QSlider>(*sheet, QStringLiteral("watermarkOpacity"));
    EXPECT_EQ(opacity->value(), 25);
    opacity->setValue(40);
    QTest::keyClick(text, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !sheet; }));
    for (int i = 0; i < 3; ++i) {
        const auto stamp =
            std::dynamic_pointer_cast<WatermarkAnnotation>(m_document->pdfDocument()->page(i)->annotations().at(0));
        ASSERT_TRUE(stamp);
        EXPECT_EQ(stamp->text(), QStringLiteral(" DRAFT "));
        EXPECT_EQ(stamp->opacity(), 0.4);
    }
    undo();
    EXPECT_EQ(annotationCount(), 0U);
    EXPECT_FALSE(m_document->isDocumentEdited());
}
