#include "AnnotatingPDFView.h"
#include "ShownForm.h"
#include "ToolState.h"
#include "UndoManager.h"

namespace {

class FormFillingUndoTest : public testing::Test {
protected:
    FormFillingUndoTest() {
        m_form.view.setToolState(m_toolState);
        m_form.view.setDocUndoManager(m_undoManager);
    }

    [[nodiscard]] std::string values() const {
        const QStringList ofFirst = m_form.value(FormFixture::name) + m_form.value(FormFixture::agree);
        return (ofFirst + m_form.value(FormFixture::remark, 2)).join(u'|').toStdString();
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
    const char* const states[] = {"Grace|Yes|fine", "Grace|Yes|", "Grace|Off|", "|Off|"};
    for (const char* state : states) {
        EXPECT_EQ(values(), state);
        EXPECT_EQ(m_form.view.currentPageIndex(), state == states[0] || state == states[1] ? 2 : 0) << state;
        m_undoManager->undo();
    }
    EXPECT_FALSE(m_undoManager->canUndo() || m_undoManager->isDocumentEdited());
    for (int i = 0; i < 3; ++i)
        m_undoManager->redo();
    EXPECT_EQ(values(), states[0]);
}

TEST_F(FormFillingUndoTest, typingGoesOnAfterTheDocumentHasTakenIt) {
    for (const QRectF& field : {FormFixture::name, FormFixture::notes}) {
        const auto value = [&] { return m_form.value(field).join(u'|').toStdString(); };
        m_form.click(field);
        m_form.view.applyEditors();
        m_form.type(QStringLiteral("Ada"));
        m_form.view.applyEditors();
        EXPECT_EQ(value(), "Ada");
        QCoreApplication::processEvents();
        m_form.type(QStringLiteral(" L"));
        m_form.key(Qt::Key_Return, Qt::ControlModifier);
        EXPECT_EQ(m_form.editor(), nullptr);
        for (const char* const state : {"Ada L", "Ada", ""}) {
            EXPECT_EQ(value(), state);
            m_undoManager->undo();
        }
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
    EXPECT_EQ(values(), "|Off|");
    m_toolState->setTextEditingModeEnabled(false);
    const QSignalSpy told(&m_form.view, &AnnotatingPDFView::editingTextChanged);
    m_form.click(FormFixture::name);
    m_form.type(QStringLiteral("Ada"));
    m_toolState->setTool(AnnotationTool::ink); // takes over what was typed
    EXPECT_EQ(told, QList<QVariantList>({{true}, {false}}));
    EXPECT_EQ(values(), "Ada|Off|");
}

} // namespace
