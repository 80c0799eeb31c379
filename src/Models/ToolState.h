#pragma once

#include "AnnotationFont.h"
#include "AnnotationTool.h"
#include "EraserMode.h"
#include "FormFieldMode.h"
#include "MarkupAction.h"
#include "PDFTypes.h"
#include "Palette.h"

#include <QColor>
#include <QObject>

#include <memory>
#include <optional>

class SignatureStore;
class UserDefaults;

/// What the pointer does in a document window, and with which colour, widths and modes. One for each window; shared by
/// the toolbar, which sets it, and the viewer, which reads it at each event. Nothing of it is kept between launches but
/// the signatures.
///
/// Setters take every value as it is and announce it when it differs from the present one. Main thread only.
class ToolState : public QObject {
    Q_OBJECT

public:
    /// `defaults`, where the signatures are kept, must outlive the object. Without it they go with the object.
    explicit ToolState(UserDefaults* defaults = nullptr, QObject* parent = nullptr);
    ~ToolState() override;

    [[nodiscard]] AnnotationTool tool() const { return m_tool; }
    void setTool(AnnotationTool tool);

    /// The colour of strokes, markup, note tabs and text.
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor& color);

    /// The width of strokes and borders, in points.
    [[nodiscard]] double lineWidth() const { return m_lineWidth; }
    void setLineWidth(double width);

    /// The font size of text boxes, in points.
    [[nodiscard]] double fontSize() const { return m_fontSize; }
    void setFontSize(double size);

    /// The font of text boxes.
    [[nodiscard]] AnnotationFont fontChoice() const { return m_fontChoice; }
    void setFontChoice(AnnotationFont font);

    /// The diameter of the eraser on the page, in points.
    [[nodiscard]] double eraserSize() const { return m_eraserSize; }
    void setEraserSize(double size);

    [[nodiscard]] EraserMode eraserMode() const { return m_eraserMode; }
    void setEraserMode(EraserMode mode);

    [[nodiscard]] FormFieldMode formFieldMode() const { return m_formFieldMode; }
    void setFormFieldMode(FormFieldMode mode);

    /// The decoration at the end of a drawn line.
    [[nodiscard]] PDFLineStyle lineEndStyle() const { return m_lineEndStyle; }
    void setLineEndStyle(PDFLineStyle style);

    /// What happens at once to each finished text selection; none: nothing.
    [[nodiscard]] std::optional<MarkupAction> activeMarkupMode() const { return m_activeMarkupMode; }
    void setActiveMarkupMode(std::optional<MarkupAction> mode);

    /// Whether a click on the text of the page edits that text.
    [[nodiscard]] bool isTextEditingModeEnabled() const { return m_isTextEditingModeEnabled; }
    void setTextEditingModeEnabled(bool enabled);

    /// The same object for the whole life of this one; never null.
    [[nodiscard]] const std::shared_ptr<SignatureStore>& signatureStore() const { return m_signatureStore; }

Q_SIGNALS:
    void toolChanged();
    void colorChanged();
    void lineWidthChanged();
    void fontSizeChanged();
    void fontChoiceChanged();
    void eraserSizeChanged();
    void eraserModeChanged();
    void formFieldModeChanged();
    void lineEndStyleChanged();
    void activeMarkupModeChanged();
    void textEditingModeEnabledChanged();

private:
    template <typename T>
    void set(T ToolState::*field, const T& value, void (ToolState::*changed)());

    AnnotationTool m_tool = AnnotationTool::select;
    QColor m_color = Palette::markerAmber;
    double m_lineWidth = 1.0;
    double m_fontSize = 16.0;
    AnnotationFont m_fontChoice = AnnotationFont::system;
    double m_eraserSize = 20.0;
    EraserMode m_eraserMode = EraserMode::wholeStroke;
    FormFieldMode m_formFieldMode = FormFieldMode::text;
    PDFLineStyle m_lineEndStyle = PDFLineStyle::none;
    std::optional<MarkupAction> m_activeMarkupMode;
    bool m_isTextEditingModeEnabled = false;
    const std::shared_ptr<SignatureStore> m_signatureStore;
};
