#include "AnnotationFont.h"
#include "AnnotationTool.h"
#include "EraserMode.h"
#include "FormFieldMode.h"
#include "LineEndStyle.h"
#include "MarkupAction.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QSet>

#include <gtest/gtest.h>

// The raw values are what is stored and sent, so they are spelled out here.
TEST(Enumerations, everyRawValueLeadsBackToItsCaseAndOthersToNone) {
    QStringList tools;
    for (const AnnotationToolInfo& row : allAnnotationTools()) {
        tools << row.rawValue;
        EXPECT_EQ(annotationToolFromRawValue(row.rawValue), row.tool);
        EXPECT_EQ(&info(row.tool), &row);
    }
    EXPECT_EQ(tools.join(u' '),
              QStringLiteral("select ink rectangle oval line textBox note eraser signature redact form"));

    QStringList fonts;
    for (const AnnotationFontInfo& row : allAnnotationFonts()) {
        fonts << row.rawValue;
        EXPECT_EQ(annotationFontFromRawValue(row.rawValue), row.font);
        EXPECT_EQ(&info(row.font), &row);
    }
    EXPECT_EQ(fonts.join(u' '), QStringLiteral("system serif mono rounded marker"));

    QStringList actions;
    for (const MarkupActionInfo& row : allMarkupActions()) {
        actions << row.rawValue + u'=' + row.subtype;
        EXPECT_EQ(markupActionFromRawValue(row.rawValue), row.action);
        EXPECT_EQ(&info(row.action), &row);
    }
    EXPECT_EQ(actions.join(u' '), QStringLiteral("highlight=Highlight underline=Underline strikethrough=StrikeOut"));

    for (const EraserModeInfo& row : allEraserModes())
        EXPECT_EQ(eraserModeFromRawValue(info(row.mode).rawValue), row.mode);
    for (const FormFieldModeInfo& row : allFormFieldModes())
        EXPECT_EQ(formFieldModeFromRawValue(info(row.mode).rawValue), row.mode);
    EXPECT_EQ(eraserModeFromRawValue(u"wholeStroke"), EraserMode::wholeStroke);
    EXPECT_EQ(formFieldModeFromRawValue(u"checkbox"), FormFieldMode::checkbox);

    for (const QStringView unknown : {QStringView(u""), QStringView(u"Ink"), QStringView(u"ink "), QStringView(u"2")}) {
        EXPECT_FALSE(annotationToolFromRawValue(unknown));
        EXPECT_FALSE(annotationFontFromRawValue(unknown));
        EXPECT_FALSE(markupActionFromRawValue(unknown));
        EXPECT_FALSE(eraserModeFromRawValue(unknown));
        EXPECT_FALSE(formFieldModeFromRawValue(unknown));
    }
}

TEST(Enumerations, noTwoShortcutsOfAKindCollide) {
    QString toolKeys;
    for (const AnnotationToolInfo& row : allAnnotationTools())
        toolKeys += row.shortcutKey;
    EXPECT_EQ(toolKeys, QStringLiteral("123456789rf"));
    QString markupKeys;
    for (const MarkupActionInfo& row : allMarkupActions())
        markupKeys += row.shortcutKey;
    EXPECT_EQ(markupKeys, QStringLiteral("hux"));
}

TEST(Enumerations, helpTextsFollowTheirPattern) {
    EXPECT_EQ(helpText(AnnotationTool::ink, QStringLiteral("Ctrl+2")), QStringLiteral("Draw (Ctrl+2)"));
    EXPECT_EQ(
        helpText(MarkupAction::highlight, QStringLiteral("Ctrl+Shift+H")),
        QStringLiteral(
            "Highlight selected text, or click with nothing selected to keep highlighting whatever you select next, "
            "until you click it again (Ctrl+Shift+H)"));
    EXPECT_TRUE(helpText(MarkupAction::strikethrough, QString()).contains(u"keep strikethroughing whatever"));
}

TEST(Enumerations, thePlainLineIsTheFirstOfSixLineEnds) {
    QStringList titles;
    QSet<int> styles;
    for (const LineEndStyleInfo& row : allLineEndStyles()) {
        titles << row.title;
        styles << static_cast<int>(row.style);
    }
    EXPECT_EQ(titles.join(u','), QStringLiteral("Line,Arrow,Open Arrow,Circle,Square,Diamond"));
    EXPECT_EQ(styles, (QSet<int>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(allLineEndStyles()[1].style, PDFLineStyle::closedArrow);
}

TEST(PlatformFont, everyChoiceResolvesAndKeepsSizeAndWeight) {
    for (const AnnotationFontInfo& row : allAnnotationFonts()) {
        const QFont font = platformFont(row.font, 17.5, QFont::DemiBold);
        EXPECT_DOUBLE_EQ(font.pointSizeF(), 17.5) << row.rawValue.toStdString();
        EXPECT_GE(font.weight(), QFont::DemiBold) << row.rawValue.toStdString();
        EXPECT_FALSE(QFontInfo(font).family().isEmpty()) << row.rawValue.toStdString();
    }
    const QFontMetricsF mono(platformFont(AnnotationFont::mono, 12));
    EXPECT_DOUBLE_EQ(mono.horizontalAdvance(QStringLiteral("iiii")), mono.horizontalAdvance(QStringLiteral("WWWW")));
}

TEST(PlatformFont, theRoundedAndTheHandwrittenFontAreFacesOfTheirOwn) {
    const QString system = QFontInfo(platformFont(AnnotationFont::system, 12)).family();
    EXPECT_NE(QFontInfo(platformFont(AnnotationFont::rounded, 12)).family(), system);
    const QFontInfo marker(platformFont(AnnotationFont::marker, 12, QFont::Light));
    EXPECT_NE(marker.family(), system);
    EXPECT_TRUE(marker.bold());
}
