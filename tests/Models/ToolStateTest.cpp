#include "ToolState.h"

#include <gtest/gtest.h>

TEST(ToolState, aNewOneHasTheValuesOfAFreshWindow) {
    const ToolState state;
    EXPECT_EQ(state.tool(), AnnotationTool::select);
    EXPECT_EQ(state.color(), QColor(242, 169, 59));
    EXPECT_EQ(state.lineWidth(), 1.0);
    EXPECT_EQ(state.fontSize(), 16.0);
    EXPECT_EQ(state.fontChoice(), AnnotationFont::system);
    EXPECT_EQ(state.eraserSize(), 20.0);
    EXPECT_EQ(state.eraserMode(), EraserMode::wholeStroke);
    EXPECT_EQ(state.formFieldMode(), FormFieldMode::text);
    EXPECT_EQ(state.lineEndStyle(), PDFLineStyle::none);
    EXPECT_EQ(state.activeMarkupMode(), std::nullopt);
    EXPECT_FALSE(state.isTextEditingModeEnabled());
}

namespace {

/// A change of one property, and the signal that must tell of it.
struct Change {
    const char* name;
    void (ToolState::*signal)();
    void (*make)(ToolState&);
    bool (*isMade)(const ToolState&);
};

const Change changes[] = {
    {"tool", &ToolState::toolChanged, [](ToolState& s) { s.setTool(AnnotationTool::eraser); },
     [](const ToolState& s) { return s.tool() == AnnotationTool::eraser; }},
    {"color", &ToolState::colorChanged, [](ToolState& s) { s.setColor(Qt::green); },
     [](const ToolState& s) { return s.color() == QColor(Qt::green); }},
    {"lineWidth", &ToolState::lineWidthChanged, [](ToolState& s) { s.setLineWidth(-3); },
     [](const ToolState& s) { return s.lineWidth() == -3; }},
    {"fontSize", &ToolState::fontSizeChanged, [](ToolState& s) { s.setFontSize(4000); },
     [](const ToolState& s) { return s.fontSize() == 4000; }},
    {"fontChoice", &ToolState::fontChoiceChanged, [](ToolState& s) { s.setFontChoice(AnnotationFont::mono); },
     [](const ToolState& s) { return s.fontChoice() == AnnotationFont::mono; }},
    {"eraserSize", &ToolState::eraserSizeChanged, [](ToolState& s) { s.setEraserSize(0); },
     [](const ToolState& s) { return s.eraserSize() == 0; }},
    {"eraserMode", &ToolState::eraserModeChanged, [](ToolState& s) { s.setEraserMode(EraserMode::precise); },
     [](const ToolState& s) { return s.eraserMode() == EraserMode::precise; }},
    {"formFieldMode", &ToolState::formFieldModeChanged,
     [](ToolState& s) { s.setFormFieldMode(FormFieldMode::checkbox); },
     [](const ToolState& s) { return s.formFieldMode() == FormFieldMode::checkbox; }},
    {"lineEndStyle", &ToolState::lineEndStyleChanged, [](ToolState& s) { s.setLineEndStyle(PDFLineStyle::diamond); },
     [](const ToolState& s) { return s.lineEndStyle() == PDFLineStyle::diamond; }},
    {"activeMarkupMode", &ToolState::activeMarkupModeChanged,
     [](ToolState& s) { s.setActiveMarkupMode(MarkupAction::underline); },
     [](const ToolState& s) { return s.activeMarkupMode() == MarkupAction::underline; }},
    {"isTextEditingModeEnabled", &ToolState::textEditingModeEnabledChanged,
     [](ToolState& s) { s.setTextEditingModeEnabled(true); },
     [](const ToolState& s) { return s.isTextEditingModeEnabled(); }},
};

} // namespace

// No value is clamped, and none changes another.
TEST(ToolState, eachPropertyTakesItsValueAndTellsOfItAlone) {
    for (const Change& change : changes) {
        ToolState state;
        int told = 0;
        int others = 0;
        for (const Change& each : changes) {
            int& count = each.name == change.name ? told : others;
            QObject::connect(&state, each.signal, &state, [&count] { ++count; });
        }
        change.make(state);
        EXPECT_TRUE(change.isMade(state)) << change.name;
        change.make(state);
        EXPECT_EQ(told, 1) << change.name;
        EXPECT_EQ(others, 0) << change.name;
    }
}
