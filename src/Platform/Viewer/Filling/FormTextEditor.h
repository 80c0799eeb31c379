#pragma once

#include "FormFieldEditor.h"

class FieldLineEdit;
class InlineFreeTextEditor;

/// Edits text fields, of one line or of more, and combo boxes that take a text of the user's own. Return breaks the
/// line in a field of more lines, and Ctrl+Return commits there. A text never becomes longer than the field allows,
/// whatever is pasted. Main thread only.
class FormTextEditor : public FormFieldEditor {
    Q_OBJECT

public:
    explicit FormTextEditor(PageSurface& view);
    ~FormTextEditor() override;

    /// Takes what was typed into the document, and stays open for more.
    void apply();
    /// Puts another text in the place of the present one, as if it was typed. An editor is open.
    void replaceText(const QString& text);

Q_SIGNALS:
    /// The list of an editable combo box is asked for.
    void choicesRequested();

private:
    [[nodiscard]] QWidget* makeWidget() override;
    void click(QPointF point) override;
    [[nodiscard]] bool isChanged() const override;
    [[nodiscard]] QStringList value() const override;
    void finishComposing() override;
    void layOut() override;
    [[nodiscard]] bool breaksLine(const QKeyEvent& key) const override;

    void setLineHeight(InlineFreeTextEditor& editor) const;
    void fitText();
    [[nodiscard]] double lift() const;
    [[nodiscard]] bool hasLines() const;
    [[nodiscard]] FieldLineEdit* line() const;
    [[nodiscard]] InlineFreeTextEditor* lines() const;
    [[nodiscard]] QWidget* makeLine();
    [[nodiscard]] QWidget* makeLines();
};
