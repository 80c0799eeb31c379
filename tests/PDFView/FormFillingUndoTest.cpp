#include "AnnotatingPDFView.h"
#include "ShownForm.h"
#include "ToolState.h"
#include "UndoManager.h"

#include <QScrollBar>

namespace {

class FormFillingUndoTest : public testing::Test {
protected:
    FormFillingUndoTest() {
        m_form.view.setToolState(m_toolState);
        m_form.view.setDocUndoManager(m_undoManager);
    }

    ShownForm<AnnotatingPDFView> m_form;
    std::shared_ptr<ToolState> m_toolState = std::make_shared<ToolState>();
    std::shared_ptr<UndoManager> m_undoManager = std::make_shared<UndoManager>();
};

TEST_F(FormFillingUndoTest, eachCommittedEditIsAStepAndScrollsToItsField) {
    m_form.click(FormFixture::name);
    m_form.type(QStringLiteral("Ada"));
    m_form.key(Qt::Key_Z, Qt::ControlModifier); // the editor's
    EXPECT_FALSE(m_undoManager->canUndo());
    m_form.type(QStringLiteral("Grace"));
    m_form.click(FormFixture::agree); // commits and toggles: two steps
    m_form.click(FormFixture::remark, 2);
    m_form.type(QStringLiteral("fine"));
    m_form.key(Qt::Key_Return);
    EXPECT_EQ(m_form.view.currentPageIndex(), 2);
    const auto values = [&] {
        return (m_form.value(FormFixture::name) + m_form.value(FormFixture::agree) +
                m_form.value(FormFixture::remark, 2))
            .join(QLatin1Char('|'))
            .toStdString();
    };
    EXPECT_EQ(values(), "Grace|Yes|fine");
    m_undoManager->undo();
    EXPECT_EQ(values(), "Grace|Yes|");
    m_undoManager->undo();
    EXPECT_EQ(values(), "Grace|Off|");
    EXPECT_EQ(m_form.view.currentPageIndex(), 0);
    EXPECT_TRUE(m_form.view.viewport()->rect().contains(m_form.onScreen(FormFixture::agree).toAlignedRect()));
    m_undoManager->undo();
    EXPECT_EQ(values(), "|Off|");
    EXPECT_FALSE(m_undoManager->canUndo());
    EXPECT_FALSE(m_undoManager->isDocumentEdited());
    EXPECT_FALSE(m_form.document->page(0)->isModified());
    for (int i = 0; i < 3; ++i)
        m_undoManager->redo();
    EXPECT_EQ(values(), "Grace|Yes|fine");
    EXPECT_EQ(m_form.view.currentPageIndex(), 2);
    m_undoManager->undo();
    EXPECT_EQ(values(), "Grace|Yes|");
}

TEST_F(FormFillingUndoTest, typingGoesOnAfterTheDocumentHasTakenIt) {
    for (const QRectF& field : {FormFixture::name, FormFixture::notes}) {
        m_form.click(field);
        m_form.view.applyEditors();
        EXPECT_EQ(m_form.value(field), QStringList(QString()));
        m_form.type(QStringLiteral("Ada"));
        m_form.view.applyEditors();
        EXPECT_EQ(m_form.value(field), QStringList(QStringLiteral("Ada")));
        QCoreApplication::processEvents();
        m_form.type(QStringLiteral(" L"));
        m_form.key(Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(m_form.editor(), nullptr);
        EXPECT_EQ(m_form.value(field), QStringList(QStringLiteral("Ada L")));
        m_undoManager->undo();
        EXPECT_EQ(m_form.value(field), QStringList(QStringLiteral("Ada")));
        m_undoManager->undo();
        EXPECT_EQ(m_form.value(field), QStringList(QString()));
        EXPECT_FALSE(m_undoManager->canUndo());
    }
    m_form.click(FormFixture::fruit);
    m_form.view.applyEditors(); // nothing is typed in a list
    EXPECT_EQ(m_form.editor(), nullptr);
    EXPECT_TRUE(m_undoManager->canUndo());
}

TEST_F(FormFillingUndoTest, fieldsReactToTheToolThatSelectsOnly) {
    m_toolState->setTool(AnnotationTool::rectangle);
    m_form.click(FormFixture::agree);
    m_toolState->setTool(AnnotationTool::select);
    m_toolState->setTextEditingModeEnabled(true);
    m_form.click(FormFixture::agree);
    m_form.key(Qt::Key_Tab);
    EXPECT_EQ(m_form.editor(), nullptr);
    EXPECT_EQ(m_form.value(FormFixture::agree), QStringList(QStringLiteral("Off")));
    m_toolState->setTextEditingModeEnabled(false);
    QList<bool> told;
    QObject::connect(&m_form.view, &AnnotatingPDFView::editingTextChanged, &m_form.view,
                     [&told](bool isEditing) { told.push_back(isEditing); });
    m_form.click(FormFixture::name);
    EXPECT_TRUE(m_form.view.isEditingText());
    m_form.type(QStringLiteral("Ada"));
    m_toolState->setTool(AnnotationTool::ink); // takes over what was typed
    EXPECT_EQ(told, QList<bool>({true, false}));
    EXPECT_EQ(m_form.value(FormFixture::name), QStringList(QStringLiteral("Ada")));
}

} // namespace
