#include "WorkspaceTest.h"

#include "LineStylePicker.h"
#include "PassingNotice.h"
#include "PointSizeField.h"
#include "SegmentedChoice.h"
#include "WorkspaceToolbar.h"

#include <QComboBox>

/// The options of the toolbar that are to be seen, by the names of their widgets.
static QString visibleOptions(const QWidget& workspace) {
    QStringList names;
    for (const char* name : {"customColorButton", "fontChoice", "fontSize", "strokeWidth", "lineEndStyleButton",
                             "eraserSize", "eraserMode", "formFieldMode"}) {
        const auto* widget = workspace.findChild<QWidget*>(QLatin1String(name));
        if (widget && widget->isVisible())
            names << QLatin1String(name);
    }
    return names.join(u' ');
}

TEST_F(WorkspaceTest, everyToolHasItsKeyButtonNoticeAndOptions) {
    openWorkspace({});
    const QString shapes = QStringLiteral("customColorButton strokeWidth");
    const struct {
        AnnotationTool tool;
        Qt::Key key;
        const char* notice;
        QString options;
    } cases[] = {
        {AnnotationTool::ink, Qt::Key_2, "Switched to Draw Tool", shapes},
        {AnnotationTool::rectangle, Qt::Key_3, "Switched to Rectangle Tool", shapes},
        {AnnotationTool::oval, Qt::Key_4, "Switched to Oval Tool", shapes},
        {AnnotationTool::line, Qt::Key_5, "Switched to Line Tool", shapes + QStringLiteral(" lineEndStyleButton")},
        {AnnotationTool::textBox, Qt::Key_6, "Switched to Text Box Tool",
         QStringLiteral("customColorButton fontChoice fontSize")},
        {AnnotationTool::note, Qt::Key_7, "Switched to Note Tool", shapes},
        {AnnotationTool::eraser, Qt::Key_8, "Switched to Eraser Tool", QStringLiteral("eraserSize eraserMode")},
        {AnnotationTool::redact, Qt::Key_R, "Switched to Redact Tool", shapes},
        {AnnotationTool::form, Qt::Key_F, "Switched to Form Field Tool", QStringLiteral("formFieldMode")},
        {AnnotationTool::select, Qt::Key_1, "Switched to Select Tool", shapes},
    };
    for (const auto& each : cases) {
        m_toolState->setActiveMarkupMode(MarkupAction::underline);
        m_toolState->setTextEditingModeEnabled(true);
        QTest::keyClick(m_view, each.key, Qt::ControlModifier);
        EXPECT_EQ(m_toolState->tool(), each.tool) << each.notice;
        EXPECT_FALSE(m_toolState->activeMarkupMode()) << each.notice;
        EXPECT_FALSE(m_toolState->isTextEditingModeEnabled()) << each.notice;
        EXPECT_EQ(m_workspace->notice().message(), QLatin1String(each.notice));
        EXPECT_EQ(visibleOptions(*m_workspace), each.options) << each.notice;
        for (const AnnotationToolInfo& row : allAnnotationTools())
            EXPECT_EQ(button(row.rawValue)->isChecked(), row.tool == each.tool) << row.rawValue.toStdString();
    }
    EXPECT_EQ(button(QStringLiteral("ink"))->toolTip(), QStringLiteral("Draw (Ctrl+2)"));
    press(QStringLiteral("oval"));
    EXPECT_EQ(m_toolState->tool(), AnnotationTool::oval);
    press(QStringLiteral("oval"));
    EXPECT_TRUE(button(QStringLiteral("oval"))->isChecked()) << "The present tool can't be put out.";

    // Whoever else changes the state, the buttons follow.
    m_toolState->setTool(AnnotationTool::select);
    EXPECT_TRUE(button(QStringLiteral("select"))->isChecked());
    EXPECT_FALSE(button(QStringLiteral("oval"))->isChecked());
}

TEST_F(WorkspaceTest, aNewerNoticeStaysForItsOwnTime) {
    openWorkspace({});
    press(QStringLiteral("ink"));
    press(QStringLiteral("note"));
    EXPECT_EQ(m_workspace->notice().message(), QStringLiteral("Switched to Note Tool"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_workspace->notice().isHidden(); }));
    EXPECT_TRUE(m_workspace->notice().message().isEmpty());
}

TEST_F(WorkspaceTest, editingPageTextTurnsOnAndOff) {
    openWorkspace({});
    m_toolState->setTool(AnnotationTool::ink);
    m_toolState->setActiveMarkupMode(MarkupAction::highlight);
    press(QStringLiteral("editText"));
    EXPECT_TRUE(m_toolState->isTextEditingModeEnabled());
    EXPECT_EQ(m_toolState->tool(), AnnotationTool::select);
    EXPECT_FALSE(m_toolState->activeMarkupMode());
    EXPECT_EQ(m_workspace->notice().message(), QStringLiteral("Editing Mode — click any line of text to edit it"));
    EXPECT_TRUE(button(QStringLiteral("editText"))->isChecked());
    press(QStringLiteral("editText"));
    EXPECT_FALSE(m_toolState->isTextEditingModeEnabled());
    EXPECT_FALSE(button(QStringLiteral("editText"))->isChecked());
    press(QStringLiteral("editText"));
    press(QStringLiteral("highlight"));
    EXPECT_FALSE(button(QStringLiteral("editText"))->isChecked()) << "Markup ends it.";
}

TEST_F(WorkspaceTest, optionsSetAndShowTheToolState) {
    openWorkspace({});
    m_toolState->setTool(AnnotationTool::textBox);
    auto* font = find<QComboBox>(*m_workspace, QStringLiteral("fontChoice"));
    EXPECT_EQ(font->currentText(), QStringLiteral("Sans"));
    font->setFocus();
    QTest::keyClick(font, Qt::Key_End);
    EXPECT_EQ(m_toolState->fontChoice(), AnnotationFont::marker);
    m_toolState->setFontChoice(AnnotationFont::serif);
    EXPECT_EQ(font->currentText(), QStringLiteral("Serif"));

    const struct {
        AnnotationTool tool;
        const char* name;
        double shown;
        double (ToolState::*value)() const;
        double largest;
    } sizes[] = {
        {AnnotationTool::textBox, "fontSize", 16, &ToolState::fontSize, 48},
        {AnnotationTool::ink, "strokeWidth", 1, &ToolState::lineWidth, 30},
        {AnnotationTool::eraser, "eraserSize", 20, &ToolState::eraserSize, 100},
    };
    for (const auto& each : sizes) {
        m_toolState->setTool(each.tool);
        auto* field = find<PointSizeField>(*m_workspace, QLatin1String(each.name));
        EXPECT_EQ(field->value(), each.shown) << each.name;
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QStringLiteral("999"));
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_EQ((m_toolState.get()->*each.value)(), each.largest) << each.name;
    }
    m_toolState->setLineWidth(2.5);
    EXPECT_EQ(find<PointSizeField>(*m_workspace, QStringLiteral("strokeWidth"))->text(), QStringLiteral("2.5"));

    QTest::mouseClick(find<QToolButton>(*m_workspace, QStringLiteral("Precise")), Qt::LeftButton);
    EXPECT_EQ(m_toolState->eraserMode(), EraserMode::precise);
    m_toolState->setEraserMode(EraserMode::wholeStroke);
    EXPECT_EQ(find<SegmentedChoice>(*m_workspace, QStringLiteral("eraserMode"))->current(), 0);
    m_toolState->setTool(AnnotationTool::form);
    QTest::mouseClick(find<QToolButton>(*m_workspace, QStringLiteral("Checkbox")), Qt::LeftButton);
    EXPECT_EQ(m_toolState->formFieldMode(), FormFieldMode::checkbox);
}

TEST_F(WorkspaceTest, lineEndStylesOpenUnderThePointerAndByKeyboard) {
    openWorkspace({});
    auto* picker = find<LineStylePicker>(*m_workspace, QStringLiteral("lineStylePicker"));
    QTest::mouseMove(button(QStringLiteral("line")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker->isVisible(); }));
    EXPECT_TRUE(m_workspace->rect().contains(picker->geometry()));
    EXPECT_GT(picker->y(), button(QStringLiteral("line"))->mapTo(m_workspace.get(), QPoint(0, 20)).y());
    auto* arrow = find<QAbstractButton>(*picker, QStringLiteral("lineStyle-Arrow"));
    QTest::mouseMove(arrow);
    QTest::qWait(300);
    EXPECT_TRUE(picker->isVisible()) << "The pointer went from the button into the picker.";
    QTest::mouseMove(m_view);
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker->isHidden(); }));

    QTest::mouseMove(button(QStringLiteral("line")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return picker->isVisible(); }));
    QTest::mouseClick(arrow, Qt::LeftButton);
    EXPECT_EQ(m_toolState->lineEndStyle(), PDFLineStyle::closedArrow);
    EXPECT_TRUE(picker->isHidden());
    QTest::mouseMove(m_view);

    m_toolState->setTool(AnnotationTool::line);
    QToolButton* styles = button(QStringLiteral("lineEndStyle"));
    styles->setFocus();
    QTest::keyClick(styles, Qt::Key_Space);
    EXPECT_TRUE(arrow->hasFocus());
    QTest::keyClick(arrow, Qt::Key_Right);
    EXPECT_EQ(m_toolState->lineEndStyle(), PDFLineStyle::closedArrow);
    QTest::keyClick(picker->focusWidget(), Qt::Key_Return);
    EXPECT_EQ(m_toolState->lineEndStyle(), PDFLineStyle::openArrow);
    EXPECT_TRUE(picker->isHidden());
    EXPECT_TRUE(styles->hasFocus());

    QTest::keyClick(styles, Qt::Key_Space);
    QTest::keyClick(picker->focusWidget(), Qt::Key_Escape);
    EXPECT_TRUE(picker->isHidden());
    QTest::keyClick(styles, Qt::Key_Space);
    m_view->setFocus();
    EXPECT_TRUE(picker->isHidden());
    EXPECT_TRUE(m_view->hasFocus());
}

TEST_F(WorkspaceTest, aNarrowWindowShowsAllOfTheToolbar) {
    openWorkspace({});
    auto* toolbar = find<WorkspaceToolbar>(*m_workspace, QStringLiteral("workspaceToolbar"));
    int formerHeight = 0;
    for (const int width : {1600, 1000, 700, 480}) {
        m_workspace->resize(width, 700);
        QCoreApplication::processEvents();
        ASSERT_EQ(m_workspace->width(), width);
        EXPECT_GE(toolbar->height(), formerHeight);
        formerHeight = toolbar->height();
        for (const AnnotationToolInfo& row : allAnnotationTools()) {
            m_toolState->setTool(row.tool);
            QCoreApplication::processEvents();
            EXPECT_EQ(toolbar->height(), formerHeight) << "A change of the tool moves nothing.";
            QRegion taken;
            for (const QWidget* widget : toolbar->findChildren<QWidget*>()) {
                if (!widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus) || !widget->accessibleName().size())
                    continue;
                const QRect place(widget->mapTo(toolbar, QPoint()), widget->size());
                EXPECT_TRUE(toolbar->rect().contains(place)) << width << widget->objectName().toStdString();
                if (qobject_cast<const QAbstractButton*>(widget)) {
                    EXPECT_FALSE(taken.intersects(place)) << width << widget->objectName().toStdString();
                    taken += place;
                }
            }
        }
    }
    EXPECT_GT(formerHeight, 90) << "There were several rows.";
}
