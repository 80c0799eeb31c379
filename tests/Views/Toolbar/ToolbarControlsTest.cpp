#include "WorkspaceTest.h"

#include "ColorSwatch.h"
#include "PDFAnnotation.h"
#include "PageField.h"
#include "WorkspaceActions.h"

TEST_F(WorkspaceTest, thePageFieldAndItsButtonsGoToPagesThatThereAre) {
    openWorkspace({.pageCount = 12});
    auto* field = find<PageField>(*m_workspace, QStringLiteral("pageField"));
    EXPECT_FALSE(button(QStringLiteral("previousPage"))->isEnabled());
    press(QStringLiteral("nextPage"));
    press(QStringLiteral("nextPage"));
    press(QStringLiteral("previousPage"));
    EXPECT_EQ(field->text(), QStringLiteral("2 of 12"));
    m_view->goToLastPage();
    EXPECT_FALSE(button(QStringLiteral("nextPage"))->isEnabled());
    for (const char* typed : {"7", " 12 ", "0", "13", "", "two", "99999999999999", "3 of 12"}) {
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Backspace);
        QTest::keyClicks(field, QLatin1String(typed));
        QTest::keyClick(field, Qt::Key_Return);
        const int shown = *typed == '7' ? 7 : *typed == '3' ? 3 : 12; // which it stays at for what is no page
        EXPECT_EQ(field->text(), QStringLiteral("%1 of 12").arg(shown)) << typed;
        EXPECT_EQ(m_view->currentPageIndex(), shown - 1) << typed;
    }
    // Leaving the field counts as well; Escape takes back.
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("5"));
    m_view->setFocus();
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("9"));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_EQ(field->text(), QStringLiteral("5 of 12"));
}

TEST_F(WorkspaceTest, zoomStepsAreAddedAndStopAtTheLimits) {
    openWorkspace({});
    m_view->setMaxScaleFactor(1.2);
    m_view->setMinScaleFactor(1.0);
    m_view->setScaleFactor(1.0);
    for (const auto& [name, scale] : {std::pair("zoomIn", 1.15), {"zoomIn", 1.2}, {"zoomOut", 1.05}, {"zoomOut", 1}}) {
        press(QLatin1String(name));
        EXPECT_NEAR(m_view->scaleFactor(), scale, 1e-9);
        EXPECT_EQ(button(QLatin1String(name))->isEnabled(), scale != 1.2 && scale != 1) << scale;
    }
    m_view->setMaxScaleFactor(16);
    m_view->setMinScaleFactor(0.5);
    press(QStringLiteral("zoomToFit"));
    EXPECT_NEAR(m_view->scaleFactor(), m_view->scaleFactorForSizeToFit(), 1e-9);
    EXPECT_TRUE(button(QStringLiteral("zoomToFit"))->isChecked());

    const auto checked = [this] {
        QStringList names;
        for (const QAction* scale : m_workspace->actions()->scales())
            if (scale->isChecked())
                names.append(scale->objectName());
        return names.join(u' ');
    };
    for (QAction* scale : m_workspace->actions()->scales()) {
        scale->trigger();
        EXPECT_EQ(checked(), scale->objectName());
    }
    m_workspace->resize(m_workspace->width(), m_workspace->height() + 60);
    EXPECT_TRUE(QTest::qWaitFor([&] { return checked().isEmpty(); })) << "only the height has changed";
    m_workspace->actions()->scales().at(3)->trigger();
    EXPECT_TRUE(button(QStringLiteral("zoomToFit"))->toolTip().endsWith(QStringLiteral("now 125%")));
}

TEST_F(WorkspaceTest, markupAppliesToASelectionOrStaysOnForTheNext) {
    openWorkspace({});
    const auto page = m_document->pdfDocument()->page(0);
    m_view->setCurrentSelection(page->selectAll());
    press(QStringLiteral("underline"));
    EXPECT_EQ(page->annotations().at(0)->type(), QStringLiteral("Underline"));
    EXPECT_FALSE(m_toolState->activeMarkupMode());
    EXPECT_FALSE(button(QStringLiteral("underline"))->isChecked());
    m_toolState->setTool(AnnotationTool::ink);
    QTest::keyClick(m_view, Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(m_toolState->tool(), AnnotationTool::select);
    EXPECT_TRUE(button(QStringLiteral("highlight"))->isChecked());
    press(QStringLiteral("strikethrough"));
    EXPECT_FALSE(button(QStringLiteral("highlight"))->isChecked());
    // With a selection the mode stays as it is. By its key, as a click anywhere ends a selection, which the mode marks.
    m_view->setCurrentSelection(page->selectAll());
    QTest::keyClick(m_view, Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(page->annotations().size(), 2U);
    EXPECT_EQ(m_toolState->activeMarkupMode(), MarkupAction::strikethrough);
    press(QStringLiteral("strikethrough"));
    EXPECT_FALSE(m_toolState->activeMarkupMode());
}

TEST_F(WorkspaceTest, swatchesShowAndSetTheColor) {
    openWorkspace({});
    const auto swatches = m_workspace->findChildren<ColorSwatch*>();
    EXPECT_TRUE(swatches.at(0)->isChecked());
    QTest::mouseClick(swatches.at(2), Qt::LeftButton);
    EXPECT_EQ(m_toolState->color(), Palette::annotationPresets[2]);
    QTest::mouseClick(swatches.at(2), Qt::LeftButton);
    EXPECT_TRUE(swatches.at(2)->isChecked()) << "The current color can't be put out.";
    m_toolState->setColor(Qt::cyan);
    EXPECT_FALSE(swatches.at(2)->isChecked());
}
